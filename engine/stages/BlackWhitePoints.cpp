#include "engine/stages/BlackWhitePoints.h"

#include <algorithm>

#include "engine/base/LogLine.h"
#include "engine/image/PixelRows.h"
#include "engine/image/cBitmapU16T.h"
#include "engine/stages/ColorRows.h"
#include "engine/stages/StageRun.h"

namespace TmEngine {

cLuminanceHistogram::cLuminanceHistogram(cBitmapU16T& pRecords, const sToneMappedRange& pRange,
                                         const sStageRun& pRun)
    : fCounts(static_cast<std::uint32_t*>(std::calloc(kTableSize, sizeof(std::uint32_t)))),
      fMin(pRange.fMin),
      fScale(pRange.fMax > pRange.fMin ? 65535.0f / (pRange.fMax - pRange.fMin) : 1.0f),
      fPixels(static_cast<std::int64_t>(pRecords.GetWidth()) * pRecords.GetHeight()),
      fWidth(pRecords.GetWidth()),
      fHeight(pRecords.GetHeight()) {
  if (IsEmpty()) return;
  const auto count = [&](int pY, int pX, int pCount) {
    int bins[kRunLength];
    Kernels().fBins(ColorRun(pRecords, pY, pX).fLuminance, fMin, fScale, bins, pCount);
    for (int i = 0; i < pCount; ++i) ++fCounts[static_cast<std::size_t>(bins[i])];
  };
  fWasStopped = !ForEachRun(fWidth, fHeight, pRecords.GetTileHeight(), pRun.fCancel, count);
}

template <class tGoesOn>
int cLuminanceHistogram::WalkUp(const tGoesOn& pGoesOn) const {
  std::int64_t sum = 0;  // exact: a float would stop counting at 2^24
  int bin = 0;
  while (bin < kLastIndex && pGoesOn(sum)) sum += fCounts[static_cast<std::size_t>(bin++)];
  return bin;
}

template <class tGoesOn>
int cLuminanceHistogram::WalkDown(const tGoesOn& pGoesOn) const {
  std::int64_t remainder = fPixels;
  int bin = kLastIndex;
  while (bin >= 1 && pGoesOn(remainder)) remainder -= fCounts[static_cast<std::size_t>(bin--)];
  return bin;
}

sBlackWhite cLuminanceHistogram::Points(float pBlackClip, float pWhiteClip) const {
  if (IsEmpty()) return {};
  const float target = static_cast<float>(static_cast<double>(pBlackClip) / 100.0 * fWidth * fHeight);
  const float threshold =
      static_cast<float>((1.0 - static_cast<double>(pWhiteClip) / 100.0) * fWidth * fHeight);
  const int black = WalkUp([=](std::int64_t pSum) { return target > static_cast<float>(pSum); });
  const int white = WalkDown([=](std::int64_t pRest) { return static_cast<float>(pRest) > threshold; });
  return {ValueAt(black), ValueAt(white)};
}

void cLuminanceHistogram::LogPercentiles() const {
  if (IsEmpty()) return;
  const auto pixels = static_cast<double>(static_cast<float>(fPixels));
  const auto below = [this, pixels](double pShare) {
    return WalkDown([=](std::int64_t pRest) { return static_cast<double>(pRest) > pShare * pixels; });
  };
  const int dark = WalkUp([=](std::int64_t pSum) { return 0.01 * pixels >= static_cast<double>(pSum); });
  const int median = WalkUp([=](std::int64_t pSum) { return 0.5 * pixels > static_cast<double>(pSum); });
  const int bright[3] = {below(0.99), below(0.9999), below(0.99995)};
  const auto value = [this](int pBin) { return static_cast<double>(ValueAt(pBin)); };
  LogLine(
      "Linear Perc1 at: %d (%1.2f) -  Median: %d (%1.2f)  - perc99andhigher:  %d  %d  %d  (%1.2f  %1.2f  "
      "%1.2f) -  max: %d  (%1.2f)\n",
      dark >> 8, value(dark), median >> 8, static_cast<double>(static_cast<float>(median) / fScale),
      bright[0] >> 8, bright[1] >> 8, bright[2] >> 8, value(bright[0]), value(bright[1]), value(bright[2]),
      kLastIndex >> 8, value(kLastIndex));
}

}  // namespace TmEngine
