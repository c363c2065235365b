#include "engine/stages/Preparation.h"

#include <algorithm>

#include "engine/Elementary.h"
#include "engine/PixelRows.h"
#include "engine/kernels/Kernels.h"
#include "engine/stages/ColorRows.h"
#include "engine/stages/Plane.h"
#include "engine/stages/StageFlags.h"

namespace TmEngine {

void PrepareColors(const bool* pCancel, bool* pAborted, const cRowSource& pInput,
                   const cMatrix33& pXYZToWorking, cBitmapU16T& pRecords, float* pLogLuminance,
                   sLuminanceRange& pRange) {
  constexpr float kFloor = 0x1p-128f;  // a denormal float: it must not be flushed
  const sKernels& kernels = Kernels();
  const int width = pInput.GetWidth();
  float x[kRunLength], y[kRunLength], z[kRunLength];
  sRange range = {1e30f, -1e30f};
  for (int row = 0; row < pInput.GetHeight(); ++row) {
    if (StopRequested(pCancel, pAborted)) return;
    for (int start = 0; start < width; start += kRunLength) {
      const int count = std::min(kRunLength, width - start);
      float* const luminance = pLogLuminance + RowStart(row, width) + start;
      pInput.ReadRun(row, start, count, x, y, z);
      kernels.fPrepare({x, y, z}, pXYZToWorking.Elements(), kFloor, ColorRun(pRecords, row, start), luminance,
                       count);
      kernels.fWiden(luminance, count, range);
      kernels.fLog10Row(luminance, luminance, count);
    }
  }
  pRange.fMin = range.fMin;
  pRange.fMax = range.fMax;
  pRange.fLogMax = Log10(pRange.fMax);
  pRange.fLogMin = Log10(pRange.fMin);
}

}  // namespace TmEngine
