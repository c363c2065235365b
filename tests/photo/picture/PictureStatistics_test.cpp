#include "photo/picture/PictureStatistics.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/Numbers.h"
#include "tests/photo/PictureOf.h"

namespace {

using Photo::sPictureStatistics;

/// 100 pixels per decade: 10^-3.995, 10^-2.995 and so on up to 10^0.005.
sPictureStatistics MeasureDecades() {
  std::vector<float> luminances;
  for (int i = 0; i < 500; ++i) luminances.push_back(std::pow(10.0f, static_cast<float>(i % 5 - 4) + 0.005f));
  return MeasurePicture(PictureOf(100, SpreadToXYZ(luminances)));
}

TEST(PictureStatistics, SummariseTheLogarithmsOfLuminance) {
  const sPictureStatistics light = MeasureDecades();
  EXPECT_EQ(light.fPixels, 500);
  EXPECT_EQ(light.fDark, 0);
  EXPECT_NEAR(light.fLogMin, -3.995, 1e-6);
  EXPECT_NEAR(light.fLogMax, 0.005, 1e-6);
  EXPECT_NEAR(light.fLogMean, -1.995, 1e-6);
  EXPECT_NEAR(light.GetQuantile(0.5), -1.995, 0.01);
  EXPECT_NEAR(light.GetQuantile(0.8), -0.99, 0.01);  // the end of the fourth decade's bin
  EXPECT_NEAR(light.GetQuantile(0.0), -3.995, 1e-6);
  EXPECT_NEAR(light.GetQuantile(1.0), 0.005, 1e-6);
  EXPECT_NEAR(light.GetShareAbove(-0.5), 0.2, 1e-9);
  EXPECT_NEAR(light.GetShareAbove(-2.5), 0.6, 1e-9);
  EXPECT_EQ(light.GetShareAbove(1.0), 0.0);
  const std::vector<std::int64_t> tenths = light.CountTenths(-2.0);
  ASSERT_EQ(tenths.size(), 21u);
  EXPECT_EQ(tenths[0], 100);
  EXPECT_EQ(tenths[5], 0);
  EXPECT_EQ(tenths[20], 100);
}

TEST(PictureStatistics, CountDarkAndVisiblePixelsOnly) {
  const std::vector<float> samples = SpreadToXYZ({1.0f, 0.0f, -1.0f, kNaN, 0.01f, 0.01f});
  Photo::sPicture picture = PictureOf(6, samples, {65535, 65535, 65535, 65535, 0, 1});
  EXPECT_EQ(MeasurePicture(picture).fPixels, 5);
  EXPECT_EQ(MeasurePicture(picture).fDark, 3);
  EXPECT_NEAR(MeasurePicture(picture).fLogMean, -1.0, 1e-6);
  picture.fIsPremultiplied = true;  // light without alpha is seen
  EXPECT_EQ(MeasurePicture(picture).fPixels, 6);
  const sPictureStatistics none = MeasurePicture(PictureOf(1, SpreadToXYZ({0.0f})));
  EXPECT_EQ(none.CountPositive(), 0);
  EXPECT_EQ(none.GetQuantile(0.5), 0.0);
  EXPECT_EQ(none.GetShareAbove(-9.0), 0.0);
}

/// A sample has about 400 pixels on each side, whatever the size.
TEST(PictureStatistics, SamplesAreRegular) {
  for (const int width : {300, 1000, 4100}) {
    const Photo::sPicture wide =
        PictureOf(width, std::vector<float>(static_cast<std::size_t>(width) * 3 * 2, 1.0f));
    const int step = std::max(width / 400, 1);
    EXPECT_EQ(SamplePicture(wide).fPixels, 2 * ((width - step / 2 - 1) / step + 1)) << width;
  }
}

}  // namespace
