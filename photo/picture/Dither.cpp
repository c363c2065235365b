#include "photo/picture/Dither.h"

#include "photo/picture/BlueNoise.h"

namespace Photo {

void DitherRow(const std::uint16_t* pFrom, int pPixels, int pStart, int pY, unsigned char* pTo) {
  constexpr unsigned kStep = 65535 / 255;  // between codes
  constexpr unsigned kLevels = 256;        // of the thresholds, in the middle of each
  const unsigned char* const noise = kBlueNoise[pY % kNoiseSize];
  for (int i = 0, x = pStart; i < pPixels; ++i, ++x, pFrom += 3, pTo += 3) {
    if (x == pPixels) x = 0;
    const unsigned threshold = (kStep * noise[x % kNoiseSize] + kStep / 2) / kLevels;
    for (int c = 0; c < 3; ++c) pTo[c] = static_cast<unsigned char>((pFrom[c] + threshold) / kStep);
  }
}

}  // namespace Photo
