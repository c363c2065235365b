#include "photo/picture/Dither.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "photo/picture/BlueNoise.h"

namespace {

using Photo::kNoiseSize;

/// A row of greys of one code.
std::vector<unsigned char> DitherGrey(int pCode, int pPixels, int pStart, int pY) {
  const std::vector<std::uint16_t> from(3 * static_cast<std::size_t>(pPixels),
                                        static_cast<std::uint16_t>(pCode));
  std::vector<unsigned char> to(from.size());
  Photo::DitherRow(from.data(), pPixels, pStart, pY, to.data());
  return to;
}

TEST(Dither, KeepsTheMeanOfEveryArea) {
  for (const int code : {0, 1, 128, 256, 257, 300, 40000, 65278, 65400, 65534, 65535}) {
    const double wanted = code / 257.0;
    double sum = 0.0;
    for (int y = 0; y < kNoiseSize; ++y) {
      for (const unsigned char sample : DitherGrey(code, kNoiseSize, 0, y)) {
        ASSERT_LT(std::fabs(sample - wanted), 1.0) << code;
        sum += sample;
      }
    }
    EXPECT_NEAR(sum / (3 * kNoiseSize * kNoiseSize), wanted, 0.5 / 256) << code;
  }
}

TEST(Dither, GoesByThePlaceInTheResult) {
  constexpr int kWidth = 150;
  const std::vector<unsigned char> plain = DitherGrey(30000, kWidth, 0, 70);
  for (const int start : {1, 64, 149}) {
    const std::vector<unsigned char> rolled = DitherGrey(30000, kWidth, start, 70);
    for (int x = 0; x < kWidth; ++x) {
      const auto at = static_cast<std::size_t>(3 * ((x + start) % kWidth));
      for (std::size_t c = 0; c < 3; ++c) EXPECT_EQ(rolled[3 * static_cast<std::size_t>(x) + c], plain[at]);
    }
  }
  std::vector<std::uint16_t> inPlace(std::size_t{3} * kWidth, 30000);
  auto* const bytes = reinterpret_cast<unsigned char*>(inPlace.data());
  Photo::DitherRow(inPlace.data(), kWidth, 0, 70, bytes);
  EXPECT_TRUE(std::equal(plain.begin(), plain.end(), bytes));
}

/// In white noise, a block of 4 x 4 thresholds would have a mean 18 away from the middle as its standard
/// deviation.
TEST(Dither, HasNoCoarseGrain) {
  double squares = 0.0;
  for (int y = 0; y < kNoiseSize; y += 4) {
    for (int x = 0; x < kNoiseSize; x += 4) {
      int sum = 0;
      for (int i = 0; i < 16; ++i) sum += Photo::kBlueNoise[y + i / 4][x + i % 4];
      squares += std::pow(sum / 16.0 - 127.5, 2);
    }
  }
  EXPECT_LT(std::sqrt(squares / 256), 9.0);
}

}  // namespace
