#include "photo/picture/Preview.h"

#include <gtest/gtest.h>

#include "tests/photo/PictureOf.h"

namespace {

Photo::sPicture Reduce(Photo::sPicture pPicture, int pLongSide) {
  return Photo::ReducePicture(std::move(pPicture), pLongSide);
}

TEST(Preview, AveragesLightOverAreas) {
  const Photo::sPicture reduced = Reduce(PictureOf(3, SpreadToXYZ({0, 6, 9, 3, 3, 0})), 2);
  ASSERT_EQ(reduced.fBitmap->GetWidth(), 2);
  ASSERT_EQ(reduced.fBitmap->GetHeight(), 1);
  const std::vector<float> samples = SamplesOf(reduced);
  EXPECT_NEAR(samples[0], 2.5f, 1e-6f);  // (0 + 6 / 2 + 3 + 3 / 2) / 3
  EXPECT_NEAR(samples[3], 4.5f, 1e-6f);  // (6 / 2 + 9 + 3 / 2 + 0) / 3
  ASSERT_NE(reduced.fSample, nullptr);   // single pixels, for the black and white points
  EXPECT_EQ(reduced.fSample->GetWidth(), 3);
}

TEST(Preview, KeepsTheSumOfLightForEverySize) {
  std::vector<float> light;
  for (int i = 0; i < 37 * 23; ++i) light.push_back(static_cast<float>(i * 7919 % 101));
  for (const int side : {36, 20, 7, 1}) {
    double mean[2] = {};
    const std::vector<float> reduced = SamplesOf(Reduce(PictureOf(37, SpreadToXYZ(light)), side));
    for (const float sample : light)
      mean[0] += static_cast<double>(sample) / static_cast<double>(light.size());
    for (const float sample : reduced) {
      mean[1] += static_cast<double>(sample) / static_cast<double>(reduced.size());
    }
    EXPECT_NEAR(mean[1], mean[0], 1e-5) << side;
  }
}

TEST(Preview, LeavesSmallPicturesAsTheyAre) {
  const Photo::sPicture same = Reduce(PictureOf(2, SpreadToXYZ({1, 2})), 2);
  EXPECT_EQ(SamplesOf(same), SpreadToXYZ({1, 2}));
  EXPECT_EQ(same.fSample, nullptr);
}

TEST(Preview, TransparentPixelsAddNoLight) {
  const std::vector<std::uint16_t> alpha = {65535, 0, 0, 0};
  Photo::sPicture reduced = Reduce(PictureOf(4, SpreadToXYZ({1, 9, 9, 9}), alpha), 2);
  EXPECT_NEAR(SamplesOf(reduced)[0], 1.0f, 1e-6f);
  EXPECT_EQ(reduced.fAlpha, (std::vector<std::uint16_t>{32768, 0}));
  Photo::sPicture glow = PictureOf(4, SpreadToXYZ({1, 9, 9, 9}), alpha);
  glow.fIsPremultiplied = true;  // its light is seen without alpha
  EXPECT_NEAR(SamplesOf(Reduce(std::move(glow), 2))[0], 5.0f, 1e-6f);
}

}  // namespace
