#include "engine/stages/Preparation.h"

#include <algorithm>

#include "engine/base/Plane.h"
#include "engine/image/PixelRows.h"
#include "engine/kernels/Kernels.h"
#include "engine/math/Elementary.h"
#include "engine/stages/ColorRows.h"
#include "engine/stages/StageRun.h"

namespace TmEngine {

bool PrepareColors(const sStageRun& pRun, const cRowSource& pInput, const cMatrix33& pXYZToWorking,
                   cBitmapU16T& pRecords, float* pLogLuminance, sLuminanceRange& pRange) {
  constexpr float kFloor = 0x1p-128f;  // a denormal float: it must not be flushed
  const sKernels& kernels = Kernels();
  const int width = pInput.GetWidth();
  float x[kRunLength], y[kRunLength], z[kRunLength];
  sRange range = {1e30f, -1e30f};
  const auto prepare = [&](int pY, int pX, int pCount) {
    float* const luminance = pLogLuminance + RowStart(pY, width) + pX;
    ForEachPart(width, pY, pX, pCount, [&](int pRow, int pColumn, int pOffset, int pPart) {
      pInput.ReadRun(pRow, pColumn, pPart, x + pOffset, y + pOffset, z + pOffset);
    });
    kernels.fPrepare({x, y, z}, pXYZToWorking.Elements(), kFloor, ColorRun(pRecords, pY, pX), luminance,
                     pCount);
    kernels.fWiden(luminance, pCount, range);
    kernels.fLog10Row(luminance, luminance, pCount);
  };
  const bool isDone = ForEachRun(width, pInput.GetHeight(), pRecords.GetTileHeight(), pRun.fCancel, prepare);
  pRange.fMin = range.fMin;
  pRange.fMax = range.fMax;
  pRange.fLogMax = Log10(pRange.fMax);
  pRange.fLogMin = Log10(pRange.fMin);
  return isDone;
}

}  // namespace TmEngine
