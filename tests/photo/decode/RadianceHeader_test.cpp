#include "photo/decode/RadianceHeader.h"

#include "tests/photo/FolderTest.h"

namespace {

class RadianceHeader : public cFolderTest {
 protected:
  static Photo::sRadianceHeader Read(const std::string& pLines,
                                     const std::string& pResolution = "-Y 2 +X 3") {
    WriteText("a.hdr", "#?RADIANCE\n" + pLines + "\n" + pResolution + "\n");
    return Photo::ReadRadianceHeader("a.hdr");
  }
};

TEST_F(RadianceHeader, MultipliesExposuresAndCorrections) {
  const Photo::sRadianceHeader header = Read("EXPOSURE=2\nEXPOSURE= 0.5\nEXPOSURE=4\nCOLORCORR=1 2 0.5\n");
  EXPECT_EQ(header.fScale[0], 4.0);
  EXPECT_EQ(header.fScale[1], 8.0);
  EXPECT_EQ(header.fScale[2], 2.0);
}

TEST_F(RadianceHeader, IgnoresValuesThatAreNoScale) {
  for (const std::string value : {"0", "-1", "nan", "inf", "x", ""}) {
    EXPECT_EQ(Read("EXPOSURE=" + value + "\n").fScale[0], 1.0) << value;
  }
  EXPECT_EQ(Read("COLORCORR=2 2\n").fScale[0], 1.0);
}

TEST_F(RadianceHeader, ReadsEveryOrderOfRowsAsAnOrientation) {
  const char* const orders[] = {"-Y 2 +X 3", "-Y 2 -X 3", "+Y 2 -X 3", "+Y 2 +X 3",
                                "+X 3 -Y 2", "-X 3 -Y 2", "-X 3 +Y 2", "+X 3 +Y 2"};
  for (int i = 0; i < 8; ++i) EXPECT_EQ(Read("", orders[i]).fOrientation, i + 1) << orders[i];
  EXPECT_EQ(Read("", "nonsense").fOrientation, 1);
}

TEST_F(RadianceHeader, ReadsPrimariesAndXYZ) {
  EXPECT_FALSE(Read("FORMAT=32-bit_rle_rgbe\n").fPrimaries.has_value());
  const auto stated = Read("PRIMARIES= .7 .29 .17 .8 .13 .05 .3127 .329\n").fPrimaries;
  ASSERT_TRUE(stated.has_value());
  EXPECT_EQ(stated->fGreen.fY, 0.8f);
  EXPECT_EQ(stated->fWhite.fX, 0.3127f);
  EXPECT_FALSE(Read("PRIMARIES=.7 .29 .17\n").fPrimaries.has_value());
  const auto xyz = Read("FORMAT=32-bit_rle_xyze\n").fPrimaries;
  ASSERT_TRUE(xyz.has_value());
  EXPECT_EQ(xyz->fRed.fX, 1.0f);
}

TEST_F(RadianceHeader, KeepsDefaultsForOtherFiles) {
  WriteText("a.hdr", "PF\nEXPOSURE=4\n");
  EXPECT_EQ(Photo::ReadRadianceHeader("a.hdr").fScale[0], 1.0);
  EXPECT_EQ(Photo::ReadRadianceHeader("missing.hdr").fOrientation, 1);
}

}  // namespace
