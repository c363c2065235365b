#pragma once

#include <cstdint>

/// Randomness without state: every value is a hash of where it is asked for, so that a picture does not
/// depend on the order of work, the number of threads or the standard library.

namespace Scene {

inline std::uint32_t Hash(std::uint32_t pA, std::uint32_t pB = 0, std::uint32_t pC = 0) {
  std::uint32_t h = pA * 0x9E3779B1u ^ (pB * 0x85EBCA77u + 0x165667B1u) ^ (pC * 0xC2B2AE3Du + 0x27D4EB2Fu);
  h = (h ^ (h >> 15)) * 0x2C1B3C6Du;
  h = (h ^ (h >> 12)) * 0x297A2D39u;
  return h ^ (h >> 15);
}

/// [0, 1)
inline float Hash01(std::uint32_t pA, std::uint32_t pB = 0, std::uint32_t pC = 0) {
  return static_cast<float>(Hash(pA, pB, pC) >> 8) * (1.0f / 16777216.0f);
}

/// The largest whole number up to pV, |pV| below 2^31; several times as fast as the C library's on plain
/// x86-64.
inline float Floor(float pV) {
  const auto whole = static_cast<float>(static_cast<std::int32_t>(pV));
  return whole > pV ? whole - 1.0f : whole;
}

/// A cell number (any sign) as hash input.
inline std::uint32_t Cell(float pV) {
  return static_cast<std::uint32_t>(static_cast<std::int32_t>(Floor(pV)));
}

/// Smooth value noise in [0, 1), one bump per unit.
inline float Noise2(float pX, float pY, std::uint32_t pSeed) {
  const std::uint32_t x = Cell(pX);
  const std::uint32_t y = Cell(pY);
  float fx = pX - Floor(pX);
  float fy = pY - Floor(pY);
  fx = fx * fx * (3.0f - 2.0f * fx);
  fy = fy * fy * (3.0f - 2.0f * fy);
  const float a = Hash01(x, y, pSeed);
  const float b = Hash01(x + 1, y, pSeed);
  const float c = Hash01(x, y + 1, pSeed);
  const float d = Hash01(x + 1, y + 1, pSeed);
  const float low = a + (b - a) * fx;
  return low + (c + (d - c) * fx - low) * fy;
}

/// Octaves of Noise2, each turned, twice as fine and half as strong; [0, 1), mean 0.5.
inline float Fbm2(float pX, float pY, int pOctaves, std::uint32_t pSeed) {
  float sum = 0.0f;
  float weight = 0.5f;
  float total = 0.0f;
  for (int i = 0; i < pOctaves; ++i) {
    sum += weight * Noise2(pX, pY, pSeed + static_cast<std::uint32_t>(i));
    total += weight;
    const float x = 1.6f * pX + 1.2f * pY;
    pY = 1.6f * pY - 1.2f * pX;
    pX = x;
    weight *= 0.5f;
  }
  return sum / total;
}

/// About normally distributed, mean 0, deviation 1: a sum of four uniform values.
inline float HashNormal(std::uint32_t pA, std::uint32_t pB, std::uint32_t pC) {
  const std::uint32_t h = Hash(pA, pB, pC);
  const float sum = Hash01(h, 1) + Hash01(h, 2) + Hash01(h, 3) + Hash01(h, 4);
  return (sum - 2.0f) * 1.7320508f;
}

/// Sample points that fill a block of 4 x 4 pixels evenly: smoothing over a block removes their noise.
class cSampler {
 public:
  /// Sample pSample of pCount of the pixel at column pX and row pY.
  cSampler(int pX, int pY, int pSample, int pCount, std::uint32_t pSeed)
      : fIndex(static_cast<std::uint32_t>(((pY & 3) * 4 + (pX & 3)) * 7 % 16 + 16 * pSample)),
        fCount(static_cast<std::uint32_t>(16 * pCount)),
        fBlock(Hash(static_cast<std::uint32_t>(pX >> 2), static_cast<std::uint32_t>(pY >> 2), pSeed)) {}

  /// The next coordinate, [0, 1). Coordinates come in pairs that fill a square evenly (steps of the root of
  /// x^3 = x + 1); each pair takes the block's points in another order, so that pairs do not depend on each
  /// other.
  float Next() {
    static constexpr std::uint32_t kOrders[8] = {1, 5, 7, 11, 13, 17, 19, 23};
    const std::uint32_t dimension = fDimension++;
    const std::uint32_t index = fIndex * kOrders[dimension / 2 % 8] % fCount;
    const float step = dimension % 2 == 0 ? 0.75487767f : 0.56984029f;
    const float value = Hash01(fBlock, dimension) + static_cast<float>(index) * step;
    return value - Floor(value);
  }

 private:
  std::uint32_t fIndex;
  std::uint32_t fCount;
  std::uint32_t fBlock;
  std::uint32_t fDimension = 0;
};

}  // namespace Scene
