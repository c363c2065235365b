#include "engine/stages/BaseLayer.h"

#include <algorithm>
#include <cstddef>

#include "engine/base/Plane.h"
#include "engine/image/PixelRows.h"
#include "engine/stages/BilateralGrid.h"
#include "engine/stages/BoxSmoother.h"
#include "engine/stages/StageRun.h"

namespace TmEngine {
namespace {

/// Reads the base from the grid, smooths it if asked to and measures the layers. False when stopped.
bool SliceAndMeasure(const bool* pCancel, cBilateralGrid& pGrid, const float* pLogLuminance, float* pBase,
                     int pWidth, int pHeight, float pSmoothing, sLayerStatistics& pStatistics) {
  const bool smooths = pSmoothing > 0.0f;
  const int rows = RowsOfRun(pWidth);
  const auto measure = [&](int pY, int pCount) {
    const std::ptrdiff_t at = RowStart(pY, pWidth);
    pStatistics.AddRow(pLogLuminance + at, pBase + at, pCount * pWidth);
  };
  for (int y = 0; y < pHeight; ++y) {
    if (IsSet(pCancel)) return false;
    const std::ptrdiff_t row = RowStart(y, pWidth);
    pGrid.SliceRow(y, pLogLuminance + row, pBase + row);
    const int count = y % rows + 1;
    if (!smooths && (count == rows || y == pHeight - 1)) measure(y + 1 - count, count);
  }
  if (!smooths) return true;
  if (!SmoothWithBox(pBase, pBase, pWidth, pHeight, pSmoothing, pCancel)) return false;
  for (int y = 0; y < pHeight; ++y) {
    if (IsSet(pCancel)) return false;
    measure(y, 1);
  }
  return true;
}

}  // namespace

bool FormBaseLayer(const sStageRun& pRun, const float* pLogLuminance, float* pBase, int pWidth, int pHeight,
                   const sBaseFilter& pFilter, sLayerStatistics& pStatistics) {
  pStatistics = sLayerStatistics{};
  const float smoothing = static_cast<float>(std::max(pWidth, pHeight)) * pFilter.fLocalContrast / 3000.0f;
  cBilateralGrid grid(pWidth, pHeight, pFilter.fSigmaS, pFilter.fSigmaR, pFilter.fRangeMin,
                      pFilter.fRangeMax);
  if (!grid.Splat(pRun.fCancel, pLogLuminance, pFilter.fWrap) || !grid.Blur(pRun.fCancel) ||
      !SliceAndMeasure(pRun.fCancel, grid, pLogLuminance, pBase, pWidth, pHeight, smoothing, pStatistics)) {
    return false;
  }
  pStatistics.Finish(RowStart(pHeight, pWidth));
  return true;
}

}  // namespace TmEngine
