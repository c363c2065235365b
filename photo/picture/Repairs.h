#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Photo {

/// How many pixels had to be repaired before the engine may see them.
struct sRepairs {
  std::int64_t fNaN = 0;       ///< With a sample that is NaN.
  std::int64_t fInfinite = 0;  ///< Others with an infinite sample.
  std::int64_t fOutliers = 0;  ///< Others with a sample far above all that is light (see cLightLevels).
  std::int64_t fNegative = 0;  ///< Outside the gamut of real surfaces, as dark noise makes them.
};

/// Adds a warning for each kind of invalid samples; colours that no surface has are common, and get none.
void WarnOfRepairs(const sRepairs& pRepairs, std::vector<std::string>& pWarnings);

}  // namespace Photo
