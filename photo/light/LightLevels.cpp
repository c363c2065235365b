#include "photo/light/LightLevels.h"

#include <algorithm>
#include <numeric>

#include "photo/base/FloatBits.h"

namespace Photo {
namespace {

constexpr int kGap = 24;                  // exponents
constexpr int kLargestOfHalf = 127 + 15;  // exponent of the largest half float, 65504

/// How many of pGroups groups of pixels may be outliers.
std::int64_t CountAllowed(std::int64_t pGroups) {
  return std::max(std::min<std::int64_t>(4, pGroups / 8), pGroups / 200);
}

}  // namespace

float cLightLevels::FindBound() const {
  const auto count = [this](int pExponent) { return fCounts[static_cast<std::size_t>(pExponent)]; };
  const std::int64_t allowed = CountAllowed(std::accumulate(fCounts.begin(), fCounts.end(), std::int64_t{0}));
  std::int64_t above = 0;
  int lowest = -1;  // of those above, so far
  float bound = kLargestSample;
  for (int exponent = static_cast<int>(fCounts.size()) - 1; exponent >= 0 && above <= allowed; --exponent) {
    if (count(exponent) == 0) continue;
    if (lowest > kLargestOfHalf && lowest - exponent > kGap) {
      bound = std::min(bound, FloatOf(((exponent + 1) << kMantissaBits) - 1));
    }
    lowest = exponent;
    above += count(exponent);
  }
  return bound;
}

}  // namespace Photo
