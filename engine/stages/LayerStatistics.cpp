#include "engine/stages/LayerStatistics.h"

#include <algorithm>
#include <cmath>

#include "engine/image/PixelRows.h"
#include "engine/kernels/Kernels.h"

namespace TmEngine {

void sLayerStatistics::AddRow(const float* pLogLuminance, const float* pBase, int pWidth) {
  const sKernels& kernels = Kernels();
  sRange base = {fBaseMin, fBaseMax};
  sRange details = {fDetailMin, fDetailMax};
  for (int start = 0; start < pWidth; start += kRunLength) {
    const int count = std::min(kRunLength, pWidth - start);
    float detail[kRunLength];
    kernels.fSubtract(pLogLuminance + start, pBase + start, detail, count);
    kernels.fWiden(detail, count, details);
    kernels.fWiden(pBase + start, count, base);
    for (int i = 0; i < count; ++i) {
      fBaseMean += static_cast<double>(pBase[start + i]);
      fDetailMagnitude += std::fabs(static_cast<double>(detail[i]));
    }
  }
  fBaseMin = base.fMin;
  fBaseMax = base.fMax;
  fDetailMin = details.fMin;
  fDetailMax = details.fMax;
}

void sLayerStatistics::Finish(std::int64_t pPixels) {
  if (pPixels == 0) return;
  fBaseMean /= static_cast<double>(pPixels);
  fDetailMagnitude /= static_cast<double>(pPixels);
}

}  // namespace TmEngine
