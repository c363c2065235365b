#pragma once

#include "engine/stages/LayerStatistics.h"
#include "engine/stages/ToneTables.h"

namespace TmEngine {

class cBitmapU16T;

/// Range and sum of the tone-mapped luminance.
struct sToneMappedRange {
  float fMin = 0.0f;
  float fMax = 0.0f;
  double fSum = 0.0;
};

/// Writes the tone-mapped luminance of each pixel, the product of its two table entries, into its record.
/// pLogLuminance and pBase are planes of the records' size; both layers' ranges are above 0. Polls pCancel
/// before each row; sets pAborted and skips the row when it is set.
sToneMappedRange ToneMapLuminance(const bool* pCancel, bool* pAborted, const float* pLogLuminance,
                                  const float* pBase, const sLayerStatistics& pLayers,
                                  const sToneTables& pTables, cBitmapU16T& pRecords);

}  // namespace TmEngine
