#include "photo/picture/PictureDifference.h"

#include <gtest/gtest.h>

#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapBGR8.h"

namespace {

TEST(PictureDifference, CountsIn8BitCodesAndFindsThePlace) {
  constexpr int kWidth = 10;
  constexpr int kHeight = 5;
  TmEngine::cBitmapBGR8 a(kWidth, kHeight, TmEngine::eColorSpaceID_sRGB);
  TmEngine::cBitmapBGR16 b(kWidth, kHeight, TmEngine::eColorSpaceID_sRGB);
  for (int y = 0; y < kHeight; ++y) {
    for (int i = 0; i < 3 * kWidth; ++i) {
      const int code = 5 * i + y;
      a.GetBitmapData()[y * a.GetStride() + i] = static_cast<unsigned char>(code);
      b.GetBGR16Data()[y * b.GetStride() / 2 + i] = static_cast<unsigned short>(257 * code);
    }
  }
  EXPECT_EQ(Photo::ComparePictures(a, b).fAll.fLargest, 0.0);
  EXPECT_EQ(Photo::ComparePictures(a, b).fDifferentShare, 0.0);
  unsigned short* const pixel = b.GetBGR16Data() + 3 * b.GetStride() / 2 + 3 * 7;  // (7, 3)
  pixel[0] = static_cast<unsigned short>(pixel[0] + 257 * 4);                      // blue
  pixel[2] = static_cast<unsigned short>(pixel[2] + 514);                          // red
  const Photo::sPictureDifference difference = Photo::ComparePictures(a, b);
  EXPECT_EQ(difference.fAll.fLargest, 4.0);
  EXPECT_EQ(difference.fChannels[0].fLargest, 2.0);
  EXPECT_EQ(difference.fChannels[1].fLargest, 0.0);
  EXPECT_DOUBLE_EQ(difference.fChannels[2].fMean, 4.0 / 50.0);
  EXPECT_DOUBLE_EQ(difference.fAll.fMean, 6.0 / 150.0);
  EXPECT_EQ(difference.fQuantile99, 2.0);  // of 150 samples, the second largest
  EXPECT_DOUBLE_EQ(difference.fDifferentShare, 1.0 / 50.0);
  EXPECT_EQ(difference.fLargestX, 7);
  EXPECT_EQ(difference.fLargestY, 3);
}

}  // namespace
