#include "engine/stages/ToneMapping.h"

#include <algorithm>
#include <cstddef>

#include "engine/base/Plane.h"
#include "engine/image/PixelRows.h"
#include "engine/image/cBitmapU16T.h"
#include "engine/kernels/Kernels.h"
#include "engine/stages/ColorRows.h"
#include "engine/stages/StageRun.h"

namespace TmEngine {
namespace {

/// Returns pSum with the luminances added, in their order.
double ToneMapRun(const float* pLogLuminance, const float* pBase, const sLayerStatistics& pLayers,
                  const sToneTables& pTables, double pSum, float* pLuminance, int pCount) {
  const sKernels& kernels = Kernels();
  float details[kRunLength];
  int base[kRunLength], detail[kRunLength];
  kernels.fSubtract(pLogLuminance, pBase, details, pCount);
  kernels.fQuantise(pBase, pLayers.fBaseMin, pLayers.fBaseMax - pLayers.fBaseMin, base, pCount);
  kernels.fQuantise(details, pLayers.fDetailMin, pLayers.fDetailMax - pLayers.fDetailMin, detail, pCount);
  for (int i = 0; i < pCount; ++i) {
    pLuminance[i] = pTables.fBase[base[i]] * pTables.fDetail[detail[i]];
    pSum += static_cast<double>(pLuminance[i]);
  }
  return pSum;
}

/// A value that raises the maximum is not tested against the minimum, so the order of the values counts;
/// where none raises it, they are taken side by side.
void Widen(sToneMappedRange& pRange, const float* pValues, int pCount) {
  sRange run = {pRange.fMin, pRange.fMax};
  Kernels().fWiden(pValues, pCount, run);
  if (run.fMax == pRange.fMax) {
    pRange.fMin = run.fMin;
    return;
  }
  for (int i = 0; i < pCount; ++i) {
    if (pValues[i] > pRange.fMax) {
      pRange.fMax = pValues[i];
    } else if (pValues[i] < pRange.fMin) {
      pRange.fMin = pValues[i];
    }
  }
}

}  // namespace

bool ToneMapLuminance(const sStageRun& pRun, const float* pLogLuminance, const float* pBase,
                      const sLayerStatistics& pLayers, const sToneTables& pTables, cBitmapU16T& pRecords,
                      sToneMappedRange& pRange) {
  const int width = pRecords.GetWidth();
  sToneMappedRange range{pTables.fBaseMax * pTables.fDetailMax, 0.0f, 0.0};
  const auto map = [&](int pY, int pX, int pCount) {
    float* const luminance = ColorRun(pRecords, pY, pX).fLuminance;
    const std::ptrdiff_t at = RowStart(pY, width) + pX;
    range.fSum = ToneMapRun(pLogLuminance + at, pBase + at, pLayers, pTables, range.fSum, luminance, pCount);
    Widen(range, luminance, pCount);
  };
  const bool isDone = ForEachRun(width, pRecords.GetHeight(), pRecords.GetTileHeight(), pRun.fCancel, map);
  pRange = range;
  return isDone;
}

}  // namespace TmEngine
