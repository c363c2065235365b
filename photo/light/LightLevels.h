#pragma once

#include <array>
#include <cstdint>
#include <limits>

namespace Photo {

/// Counts the brightest sample of each few neighbouring pixels, to find where a picture's light ends.
class cLightLevels {
 public:
  /// Larger samples count as invalid, however many there are. Far enough below the largest float for the sums
  /// of a colour matrix.
  static constexpr float kLargestSample = 1e30f;

  /// pLargest: a finite magnitude, as the bits of a float.
  void Add(std::int32_t pLargest) {
    if (pLargest > 0) ++fCounts[static_cast<std::size_t>(pLargest >> kMantissaBits)];
  }

  /// The largest magnitude that is light. Samples above it are outliers: no more than one group of pixels in
  /// 200 has them, between them and the next lower sample lies a gap of 2^24 (7.2 decades) at the least, and
  /// they are beyond what half floats hold. The sun is nearer to its sky, by its rim if by nothing else.
  float FindBound() const;

 private:
  static constexpr int kMantissaBits = std::numeric_limits<float>::digits - 1;

  std::array<std::int64_t, 256> fCounts{};  ///< By the exponents of floats.
};

}  // namespace Photo
