#include "photo/light/RowConverter.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/Numbers.h"

namespace {

/// Light whose samples are XYZ already, so that only repairs change them.
const Photo::sLinearLight kXYZ{};

/// Rows of grey pixels, 40 each, of ordinary light, with pOdd in the middle of row pOddRow.
struct sRows {
  static constexpr int kWidth = 40;
  static constexpr int kRows = 10;

  sRows(int pOddRow, float pOdd) {
    for (int i = 0; i < 3 * kWidth * kRows; ++i) fSamples.push_back(0.01f * static_cast<float>(i % 97 + 1));
    Get(pOddRow)[61] = pOdd;
  }
  float* Get(int pRow) { return &fSamples[static_cast<std::size_t>(3 * kWidth * pRow)]; }

  std::vector<float> fSamples;
};

constexpr float kBrightest = 0.01f * 97.0f;

TEST(RowConverter, ReplaceOddSamplesAndCountTheirPixels) {
  const struct {
    float fOdd, fExpected;
    int fNaN, fInfinite, fOutliers;
    bool fIsDoneAtOnce;  // without knowing the rest of the picture
  } cases[] = {{kNaN, 0.0f, 1, 0, 0, true},
               {-kInfinity, 0.0f, 0, 1, 0, true},
               {kInfinity, kBrightest, 0, 1, 0, false},
               {1e20f, kBrightest, 0, 0, 1, false},
               {-1e20f, 0.0f, 0, 0, 1, false},
               {1e6f, 1e6f, 0, 0, 0, true},  // the sun
               {-0.5f, -0.5f, 0, 0, 0, true}};
  for (const auto& row : cases) {
    for (const bool holds : {false, true}) {
      sRows rows(5, row.fOdd);
      Photo::cRowConverter light(kXYZ);
      if (holds) light.Hold();
      for (int y = 0; y < sRows::kRows; ++y) {
        const bool isDone = light.Take(rows.Get(y), sRows::kWidth);
        EXPECT_EQ(isDone, !holds && (y != 5 || row.fIsDoneAtOnce)) << row.fOdd;
      }
      const auto repairs = light.Finish();
      if (!repairs) {  // read again, with Hold
        EXPECT_TRUE(!holds && row.fOutliers > 0) << row.fOdd;
        continue;
      }
      EXPECT_EQ(repairs->fNaN, row.fNaN) << row.fOdd;
      EXPECT_EQ(repairs->fInfinite, row.fInfinite) << row.fOdd;
      EXPECT_EQ(repairs->fOutliers, row.fOutliers) << row.fOdd;
      EXPECT_EQ(rows.fSamples, sRows(5, row.fExpected).fSamples) << row.fOdd;  // nothing else changes
    }
  }
}

/// The first rows look like light until all others turn out to be far darker.
TEST(RowConverter, OutliersInTheFirstRowAreFoundAtTheEnd) {
  sRows rows(0, 1e20f);
  for (int i = 0; i < 3 * sRows::kWidth; ++i) rows.Get(0)[i] = 1e20f;
  Photo::cRowConverter light(kXYZ);
  EXPECT_TRUE(light.Take(rows.Get(0), 1));
  for (int y = 1; y < sRows::kRows; ++y) EXPECT_TRUE(light.Take(rows.Get(y), sRows::kWidth));
  EXPECT_FALSE(light.Finish().has_value());
}

TEST(RowConverter, BringColoursOfNoSurfaceToTheBorder) {
  std::vector<std::string> warnings;
  Photo::cRowConverter light(Photo::MakeLinearLight(std::nullopt, warnings));
  float row[] = {0.2f, 0.3f, 0.4f, 2e-4f, -6.15e-5f, 0.0f, -0.01f, -0.01f, -0.01f};
  EXPECT_TRUE(light.Take(row, 3));
  EXPECT_EQ(light.Finish()->fNegative, 2);
  const Photo::sSurfaceColors surface = Photo::GetSurfaceColors();
  for (int x = 0; x < 9; x += 3) {
    const TmEngine::cVector3 rgb = surface.fToRGB * TmEngine::cVector3(row[x], row[x + 1], row[x + 2]);
    for (int i = 0; i < 3; ++i) EXPECT_GE(rgb[i], -1e-9f) << x;
  }
  EXPECT_EQ(row[7], 0.0f);
}

}  // namespace
