#include "engine/stages/ToneMapping.h"

#include <cstddef>

#include "engine/cBitmapU16T.h"
#include "engine/stages/ColorRecord.h"
#include "engine/stages/Plane.h"
#include "engine/stages/StageFlags.h"

namespace TmEngine {
namespace {

int LayerIndex(float pValue, float pMin, float pRange) {
  return ClampToIndex((pValue - pMin) * 65535.0f / pRange, kLastIndex);
}

}  // namespace

sToneMappedRange ToneMapLuminance(const bool* pCancel, bool* pAborted, const float* pBase,
                                  const float* pDetail, const sLayerStatistics& pLayers,
                                  const sToneTables& pTables, cBitmapU16T& pRecords) {
  const float baseRange = pLayers.fBaseMax - pLayers.fBaseMin;
  const float detailRange = pLayers.fDetailMax - pLayers.fDetailMin;
  sToneMappedRange range{pTables.fBaseMax * pTables.fDetailMax, 0.0f, 0.0};
  for (int y = 0; y < pRecords.GetHeight(); ++y) {
    if (StopRequested(pCancel, pAborted)) continue;
    const std::ptrdiff_t row = RowStart(y, pRecords.GetWidth());
    unsigned short* record = pRecords.GetRow(y);
    for (int x = 0; x < pRecords.GetWidth(); ++x, record += ColorRecord::kSlots) {
      const float luminance = pTables.fBase[LayerIndex(pBase[row + x], pLayers.fBaseMin, baseRange)] *
                              pTables.fDetail[LayerIndex(pDetail[row + x], pLayers.fDetailMin, detailRange)];
      ColorRecord::StoreFloat(record + ColorRecord::kLuminance, luminance);
      // A value that raises the maximum is not tested against the minimum.
      if (luminance > range.fMax) {
        range.fMax = luminance;
      } else if (luminance < range.fMin) {
        range.fMin = luminance;
      }
      range.fSum += static_cast<double>(luminance);
    }
  }
  return range;
}

}  // namespace TmEngine
