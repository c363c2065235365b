#pragma once

#include "engine/stages/LayerStatistics.h"
#include "engine/stages/ToneTables.h"

namespace TmEngine {

class cBitmapU16T;
struct sStageRun;

/// Range and sum of the tone-mapped luminance.
struct sToneMappedRange {
  float fMin = 0.0f;
  float fMax = 0.0f;
  double fSum = 0.0;
};

/// Writes the tone-mapped luminance of each pixel, the product of its two table entries, into its record.
/// pLogLuminance and pBase are planes of the records' size; both layers' ranges are above 0. Polls
/// before each row; false when stopped.
bool ToneMapLuminance(const sStageRun& pRun, const float* pLogLuminance, const float* pBase,
                      const sLayerStatistics& pLayers, const sToneTables& pTables, cBitmapU16T& pRecords,
                      sToneMappedRange& pRange);

}  // namespace TmEngine
