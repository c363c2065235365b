#include "photo/light/CicpColors.h"

#include <gtest/gtest.h>

namespace {

using Photo::FindCodedColors;

/// Paper white is 1: 203 candela per square metre in PQ, 75 % of the signal in HLG.
TEST(CicpColors, PutPaperWhiteAtOne) {
  std::vector<std::string> warnings;
  const struct {
    int fPrimaries, fTransfer;
    const char* fName;
    float fSample, fLight;
    bool fGoesBeyondWhite;
  } cases[] = {{9, 16, "Rec. 2020 PQ", 0.58069f, 1.0f, true},
               {9, 16, "Rec. 2020 PQ", 1.0f, 10000.0f / 203.0f, true},
               {12, 18, "Display P3 HLG", 0.75f, 1.0f, true},
               {9, 18, "Rec. 2020 HLG", 0.5f, 1.0f / 12.0f / 0.26496f, true},
               {1, 8, "sRGB linear", 0.25f, 0.25f, false},
               {12, 13, "Display P3", 0.5f, 0.21404f, false},
               {2, 2, "sRGB", 0.5f, 0.21404f, false},  // not stated
               {9, 1, "Rec. 2020", 0.5f, 0.21404f, false}};
  for (const auto& row : cases) {
    const auto colors = FindCodedColors(row.fPrimaries, row.fTransfer, "", warnings);
    ASSERT_TRUE(colors.has_value()) << row.fName;
    EXPECT_EQ(colors->fName, row.fName);
    EXPECT_NEAR(DecodeSample(*colors, row.fSample), row.fLight, 5e-5f * row.fLight) << row.fName;
    EXPECT_EQ(DecodeSample(*colors, 0.0f), 0.0f) << row.fName;
    EXPECT_EQ(colors->GoesBeyondWhite(), row.fGoesBeyondWhite) << row.fName;
  }
  EXPECT_TRUE(warnings.empty());
  EXPECT_TRUE(FindCodedColors(1, 13, "", warnings)->AreSRGB());
  EXPECT_FALSE(FindCodedColors(12, 13, "", warnings)->AreSRGB());
}

TEST(CicpColors, UnknownCodesLeaveAWarning) {
  std::vector<std::string> warnings;
  EXPECT_FALSE(FindCodedColors(9, 77, "sRGB is taken", warnings).has_value());
  EXPECT_FALSE(FindCodedColors(77, 16, "sRGB is taken", warnings).has_value());
  ASSERT_EQ(warnings.size(), 2u);
  EXPECT_NE(warnings[0].find("(primaries 9, transfer 77); sRGB is taken"), std::string::npos) << warnings[0];
}

TEST(CicpColors, PowersDecodeGamma) {
  const Photo::sCicpColors gamma{{}, Photo::eEncoding::kPower, 2.2, "gamma 2.2"};
  EXPECT_NEAR(DecodeSample(gamma, 0.5f), 0.217638f, 1e-6f);
}

}  // namespace
