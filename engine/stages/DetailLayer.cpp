#include "engine/stages/DetailLayer.h"

#include <cmath>
#include <cstddef>

#include "engine/stages/Plane.h"
#include "engine/stages/StageFlags.h"

namespace TmEngine {

void FormDetailLayer(const bool* pCancel, bool* pAborted, const float* pLogLuminance, const float* pBase,
                     float* pDetail, int pWidth, int pHeight, sLayerStatistics& pStatistics) {
  sLayerStatistics& statistics = pStatistics;
  statistics = sLayerStatistics{};
  for (int y = 0; y < pHeight; ++y) {
    if (StopRequested(pCancel, pAborted)) return;
    const std::ptrdiff_t end = RowStart(y + 1, pWidth);
    for (std::ptrdiff_t i = RowStart(y, pWidth); i < end; ++i) {
      const float base = pBase[i];
      const float detail = pLogLuminance[i] - base;
      pDetail[i] = detail;
      if (base > statistics.fBaseMax) statistics.fBaseMax = base;
      if (base < statistics.fBaseMin) statistics.fBaseMin = base;
      if (detail > statistics.fDetailMax) statistics.fDetailMax = detail;
      if (detail < statistics.fDetailMin) statistics.fDetailMin = detail;
      statistics.fBaseMean += static_cast<double>(base);
      statistics.fDetailMagnitude += std::fabs(static_cast<double>(detail));
    }
  }
  const auto pixels = static_cast<double>(RowStart(pHeight, pWidth));
  if (pixels != 0.0) {
    statistics.fBaseMean /= pixels;
    statistics.fDetailMagnitude /= pixels;
  }
}

}  // namespace TmEngine
