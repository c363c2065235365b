#include "photo/picture/ResultPixels.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "engine/image/cBitmapBGR8.h"

namespace {

using Photo::cResultPixels;

TEST(ResultPixels, TurnBlueGreenRedAndLeaveNoGaps) {
  TmEngine::cBitmapBGR8 image(3, 2, TmEngine::eColorSpaceID_sRGB);  // whose rows are padded
  for (int i = 0; i < 2 * image.GetStride(); ++i) image.GetBitmapData()[i] = static_cast<unsigned char>(i);
  cResultPixels pixels(image);
  EXPECT_EQ(pixels.GetBytes(), 18u);
  const int second = image.GetStride();
  const int expected[] = {2, 1, 0, 5, 4, 3, 8, 7, 6, second + 2, second + 1, second};
  for (int i = 0; i < 12; ++i) EXPECT_EQ(pixels.GetRow(0)[i], expected[i]) << i;
}

/// Rows of every length, with clipped samples at every place, against the plain count.
template <class tSample>
void CheckCounts() {
  constexpr tSample kFull = std::numeric_limits<tSample>::max();
  for (const int width : {1, 2, 63, 64, 65, 200}) {
    cResultPixels pixels(width, 6, 8 * sizeof(tSample));
    Photo::cResultSink sink(pixels, TmEngine::eColorSpaceID_sRGB, 0);
    std::int64_t black = 0;
    std::int64_t white = 0;
    for (int y = 0; y < 6; ++y) {
      const TmEngine::sSampleRow row = sink.BeginRow(y);
      auto* const samples = static_cast<tSample*>(row.fSamples);
      ASSERT_TRUE(row.fRedFirst);
      for (int i = 0; i < 3 * width; ++i) {
        const int kind = (i * 31 + y * 17) % 11;
        samples[i] = y > 3 ? tSample{9} : kind == 0 && y > 1 ? kFull : kind < 7 ? tSample{0} : tSample{1};
      }
      for (int i = 0; i < 3 * width; i += 3) {
        black += samples[i] == 0 && samples[i + 1] == 0 && samples[i + 2] == 0 ? 1 : 0;
        white += samples[i] == kFull || samples[i + 1] == kFull || samples[i + 2] == kFull ? 1 : 0;
      }
      sink.EndRow(y);
    }
    EXPECT_EQ(sink.GetClipped().fBlack, black) << width;
    EXPECT_EQ(sink.GetClipped().fWhite, white) << width;
  }
}

TEST(ResultPixels, SinksCountClippedPixels) {
  CheckCounts<std::uint8_t>();
  CheckCounts<std::uint16_t>();
}

TEST(ResultPixels, SinksRollPanoramasBack) {
  for (const int start : {0, 1, 4}) {
    cResultPixels pixels(5, 1, 16);
    Photo::cResultSink sink(pixels, TmEngine::eColorSpaceID_sRGB, start);
    auto* const samples = static_cast<std::uint16_t*>(sink.BeginRow(0).fSamples);
    for (int i = 0; i < 15; ++i)
      samples[i] = static_cast<std::uint16_t>((i / 3 + start) % 5);  // scene's column
    sink.EndRow(0);
    std::uint16_t stored[15];
    std::memcpy(stored, pixels.GetRow(0), sizeof stored);
    for (int i = 0; i < 15; ++i) EXPECT_EQ(stored[i], i / 3) << start;
  }
}

}  // namespace
