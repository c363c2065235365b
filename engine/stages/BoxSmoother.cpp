#include "engine/stages/BoxSmoother.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "engine/base/Plane.h"
#include "engine/base/StageFlags.h"

namespace TmEngine {
namespace {

constexpr int kIterations = 3;

/// A box over the samples i - fReach to i + fReach, its two outermost taps short by fShort.
struct sBox {
  int fReach;
  float fShort;
};

sBox BoxOf(float pSigma, int pLongestLine) {
  const float radius = pSigma <= 1.0f ? pSigma - pSigma * 0.58f : pSigma - 0.58f;
  // From there on, a larger box covers no more: it holds the whole line from every sample.
  if (!(radius < static_cast<float>(pLongestLine))) return {pLongestLine, 0.0f};
  const float reach = std::ceil(radius);
  return {static_cast<int>(reach), reach - radius};
}

/// The weight of the taps that lie inside a line of pCount samples, for each sample.
void FillWeights(const sBox& pBox, int pCount, float* pWeights) {
  for (int i = 0; i < pCount; ++i) {
    const int first = std::max(i - pBox.fReach, 0);
    const int last = static_cast<int>(
        std::min(static_cast<std::ptrdiff_t>(i) + pBox.fReach, static_cast<std::ptrdiff_t>(pCount) - 1));
    float weight = static_cast<float>(last - first + 1);
    if (i - pBox.fReach >= 0) weight -= pBox.fShort;
    if (static_cast<std::ptrdiff_t>(i) + pBox.fReach < pCount) weight -= pBox.fShort;
    pWeights[i] = weight;
  }
}

/// One pass over pLanes lines side by side: sample i of lane l is at i * pStep + l. The sums run along the
/// lines in double, one for each lane, so that a column pass reads whole rows. Returns false when stopped.
bool Pass(const sBox& pBox, const float* pWeights, int pCount, std::ptrdiff_t pStep, int pLanes,
          const float* pFrom, float* pTo, double* pSums, const bool* pCancel) {
  const auto add = [&](std::ptrdiff_t pAt, double pSign) {
    if (pAt < 0 || pAt >= pCount) return;
    for (int lane = 0; lane < pLanes; ++lane)
      pSums[lane] += pSign * static_cast<double>(pFrom[pAt * pStep + lane]);
  };
  const auto tap = [&](std::ptrdiff_t pAt, int pLane) {
    return pAt >= 0 && pAt < pCount ? static_cast<double>(pFrom[pAt * pStep + pLane]) : 0.0;
  };
  std::fill(pSums, pSums + pLanes, 0.0);
  for (std::ptrdiff_t i = 0; i < pBox.fReach; ++i) {
    if (IsSet(pCancel)) return false;
    add(i, 1.0);
  }
  for (std::ptrdiff_t i = 0; i < pCount; ++i) {
    if (IsSet(pCancel)) return false;
    add(i + pBox.fReach, 1.0);
    for (int lane = 0; lane < pLanes; ++lane) {
      const double ends = tap(i - pBox.fReach, lane) + tap(i + pBox.fReach, lane);
      const double sum = pSums[lane] - static_cast<double>(pBox.fShort) * ends;
      pTo[i * pStep + lane] = static_cast<float>(sum / static_cast<double>(pWeights[i]));
    }
    add(i - pBox.fReach, -1.0);
  }
  return true;
}

}  // namespace

bool SmoothWithBox(const float* pFrom, float* pTo, int pWidth, int pHeight, float pSigma,
                   const bool* pCancel) {
  const std::ptrdiff_t count = RowStart(pHeight, pWidth);
  if (!(pSigma > 0.0f)) {
    if (pFrom != pTo) std::copy(pFrom, pFrom + count, pTo);
    return true;
  }
  const int longestLine = std::max(pWidth, pHeight);
  const sBox box = BoxOf(pSigma, longestLine);
  std::vector<float> weights(static_cast<std::size_t>(longestLine));
  std::vector<double> sums(static_cast<std::size_t>(pWidth));
  std::vector<float> scratch(static_cast<std::size_t>(count));
  for (int iteration = 0; iteration < kIterations; ++iteration) {
    const float* from = iteration == 0 ? pFrom : pTo;
    FillWeights(box, pWidth, weights.data());
    for (int y = 0; y < pHeight; ++y) {
      const std::ptrdiff_t row = RowStart(y, pWidth);
      if (!Pass(box, weights.data(), pWidth, 1, 1, from + row, scratch.data() + row, sums.data(), pCancel))
        return false;
    }
    FillWeights(box, pHeight, weights.data());
    if (!Pass(box, weights.data(), pHeight, pWidth, pWidth, scratch.data(), pTo, sums.data(), pCancel))
      return false;
  }
  return true;
}

}  // namespace TmEngine
