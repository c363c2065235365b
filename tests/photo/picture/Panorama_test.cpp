#include "photo/picture/Panorama.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/photo/PictureOf.h"
#include "tests/photo/TestPictures.h"

namespace {

Photo::sPicture PictureOf(const sTestPicture& pPicture) {
  return ::PictureOf(pPicture.fWidth, pPicture.fSamples);
}

TEST(Panorama, EdgesMeetInWholePanoramasOnly) {
  const sTestPicture panorama = MakePanorama(256);
  for (const int by : {0, 50, 150}) EXPECT_TRUE(EdgesMeet(PictureOf(Roll(panorama, by)))) << by;
  EXPECT_FALSE(EdgesMeet(PictureOf(MakeScene(256, 128))));
  sTestPicture half = MakePanorama(512);  // its left half, of the same shape
  for (int y = 0; y < 128; ++y)
    std::copy_n(half.GetPixel(0, 2 * y), 3 * 256, half.fSamples.data() + 3 * 256 * y);
  half.fSamples.resize(std::size_t{3} * 256 * 128);
  EXPECT_FALSE(EdgesMeet(::PictureOf(256, half.fSamples)));
}

/// Blinds in front of a calm room: the step across them is at least 1.9 times a usual one.
TEST(Panorama, EdgesMeetInLivelyPlacesAsWell) {
  sTestPicture panorama = MakePanorama(256);
  const auto cover = [&panorama](int pFrom, int pTo, double pSlope) {
    for (int y = 0; y < 128; ++y) {
      for (int x = pFrom; x < pTo; ++x) {
        const auto light = static_cast<float>(std::exp(std::sin(0.35 * x + pSlope * y)));
        for (int i = 0; i < 3; ++i) panorama.GetPixel(x, y)[i] *= light;
      }
    }
  };
  cover(120, 180, 0.9);
  for (int at = 136; at < 168; ++at) EXPECT_TRUE(EdgesMeet(PictureOf(Roll(panorama, 256 - at)))) << at;
  cover(120, 152, 1.9);  // others, which end at a column
  EXPECT_FALSE(EdgesMeet(PictureOf(Roll(panorama, 256 - 152))));
}

TEST(Panorama, IsTwiceAsWideAsHighWithinAPerCent) {
  for (const int width : {1981, 2000, 2020}) EXPECT_TRUE(Photo::HasPanoramaShape(width, 1000)) << width;
  for (const int width : {1980, 2021, 1000}) EXPECT_FALSE(Photo::HasPanoramaShape(width, 1000)) << width;
  EXPECT_FALSE(Photo::HasPanoramaShape(62, 31));  // too small to compare edges
}

TEST(Panorama, IsStatedByXmpUnlessItsWidthIsCropped) {
  const std::string type = "<GPano:ProjectionType>equirectangular</GPano:ProjectionType>";
  const std::string full = " GPano:FullPanoWidthPixels='80' " + type;
  EXPECT_TRUE(Photo::StatesPanorama(type));
  EXPECT_TRUE(Photo::StatesPanorama("GPano:CroppedAreaImageWidthPixels=\"80\"" + full));
  EXPECT_FALSE(Photo::StatesPanorama("GPano:CroppedAreaImageWidthPixels=\"40\"" + full));
  EXPECT_FALSE(Photo::StatesPanorama("GPano:ProjectionType=\"cylindrical\""));
  EXPECT_FALSE(Photo::StatesPanorama("GPano:ProjectionType"));
}

/// However a panorama is rolled, work on it begins at the same place of the scene.
TEST(Panorama, StartsAtTheSamePlaceHoweverItIsRolled) {
  const std::vector<float> scenes[] = {{3, 1, 2, 1, 5}, {1, 1, 0, 1, 1, 0, 1, 1}, {2, 2, 2, 2}, {4, 7, 4, 7}};
  for (const std::vector<float>& scene : scenes) {
    const auto width = static_cast<int>(scene.size());
    const auto startAt = [&](int pBy) {
      const std::vector<float> rolled = RollRows(SpreadToXYZ(scene), width, pBy);
      const int start = FindStartColumn(::PictureOf(width, rolled));
      return RollRows(rolled, width, (width - start) % width);  // which brings the start to the front
    };
    for (int by = 1; by < width; ++by) EXPECT_EQ(startAt(by), startAt(0)) << by;
  }
}

TEST(Panorama, RolledSourcesReadAroundTheEdge) {
  const Photo::sPicture picture = ::PictureOf(5, SpreadToXYZ({0, 1, 2, 3, 4}));
  const Photo::cRolledSource source(*picture.fBitmap, 3);
  float planes[3][5] = {};
  source.ReadRun(0, 0, 5, planes[0], planes[1], planes[2]);
  for (int x = 0; x < 5; ++x) EXPECT_EQ(planes[1][x], static_cast<float>((x + 3) % 5));
  source.ReadRun(0, 3, 2, planes[0], planes[1], planes[2]);
  EXPECT_EQ(planes[2][0], 1.0f);
  EXPECT_EQ(planes[2][1], 2.0f);
}

}  // namespace
