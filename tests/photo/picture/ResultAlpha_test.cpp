#include "photo/picture/ResultAlpha.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

/// Pixels in one row.
template <class tSample>
Photo::cResultPixels MakePixels(const std::vector<tSample>& pSamples) {
  Photo::cResultPixels pixels(static_cast<int>(pSamples.size() / 3), 1, 8 * sizeof(tSample));
  std::memcpy(pixels.GetRow(0), pSamples.data(), pixels.GetBytes());
  return pixels;
}
template <class tSample>
std::vector<tSample> GetSamples(Photo::cResultPixels& pPixels) {
  const auto* const first = reinterpret_cast<const tSample*>(pPixels.GetRow(0));
  return {first, first + pPixels.GetBytes() / sizeof(tSample)};
}

/// A picture that is made straight must look the same over black, to the last code.
TEST(ResultAlpha, KeepsThePictureOverBlackWhenItIsMadeStraight) {
  std::vector<std::uint8_t> samples;
  std::vector<std::uint16_t> alpha;
  for (unsigned a = 0; a < 256; ++a) {
    for (unsigned v = 0; v < 256; v += 3) {
      samples.insert(samples.end(), {static_cast<std::uint8_t>(v), 0, static_cast<std::uint8_t>(v / 2)});
      alpha.push_back(static_cast<std::uint16_t>(a * 257));
    }
  }
  Photo::cResultPixels pixels = MakePixels(samples);
  std::int64_t raised = 0;
  for (std::size_t i = 0; i < alpha.size(); ++i) raised += samples[3 * i] * 257 > alpha[i] ? 1 : 0;
  EXPECT_EQ(DivideByAlpha(pixels, alpha), raised);
  const std::vector<std::uint8_t> straight = GetSamples<std::uint8_t>(pixels);
  for (std::size_t i = 0; i < straight.size(); ++i) {
    ASSERT_EQ((straight[i] * (alpha[i / 3] / 257) + 127) / 255, samples[i]) << i;
  }
}

TEST(ResultAlpha, DividesSamplesOf16Bits) {
  Photo::cResultPixels pixels = MakePixels<std::uint16_t>({100, 50, 0, 65535, 300, 1, 7, 7, 7});
  std::vector<std::uint16_t> alpha = {32768, 65535, 3};
  EXPECT_EQ(DivideByAlpha(pixels, alpha), 1);
  EXPECT_EQ(GetSamples<std::uint16_t>(pixels),
            (std::vector<std::uint16_t>{200, 100, 0, 65535, 300, 1, 65535, 65535, 65535}));
  EXPECT_EQ(alpha[2], 7);  // raised to the sample
}

TEST(ResultAlpha, LaysResultsOverAColour) {
  const std::vector<std::uint16_t> alpha = {0, 65535, 32768};
  const auto layOver = [&](bool pIsPremultiplied) {
    Photo::cResultPixels pixels = MakePixels<std::uint8_t>({100, 100, 100, 100, 100, 100, 100, 100, 200});
    Photo::LayOver({200, 100, 0}, TmEngine::eColorSpaceID_sRGB, pIsPremultiplied, alpha, pixels);
    return GetSamples<std::uint8_t>(pixels);
  };
  EXPECT_EQ(layOver(false), (std::vector<std::uint8_t>{200, 100, 0, 100, 100, 100, 150, 100, 100}));
  EXPECT_EQ(layOver(true), (std::vector<std::uint8_t>{255, 200, 100, 100, 100, 100, 200, 150, 200}));
}

}  // namespace
