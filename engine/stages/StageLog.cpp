#include "engine/stages/StageLog.h"

#include "engine/base/LogLine.h"
#include "engine/math/Elementary.h"
#include "engine/stages/BlackWhitePoints.h"
#include "engine/stages/ExposureScale.h"
#include "engine/stages/LayerStatistics.h"
#include "engine/stages/Preparation.h"
#include "engine/stages/ToneMapping.h"
#include "engine/stages/ToneTables.h"

namespace TmEngine {
namespace {

/// Formats take doubles.
double Wide(float pValue) {
  return static_cast<double>(pValue);
}

/// The division is one of floats.
double Scaling(float pLow, float pHigh) {
  return Wide(1.0f / (pHigh - pLow));
}

}  // namespace

void cStageLog::Preparation(const sLuminanceRange& pInput) const {
  if (!fIsOn) return;
  LogLine("Prepare for Rendering - Min: %1.2f  - Max: %1.2f\n", Wide(pInput.fLogMin), Wide(pInput.fLogMax));
}

void cStageLog::Layers(int pWidth, int pHeight, const sLayerStatistics& pLayers,
                       const sLuminanceRange& pInput) const {
  if (!fIsOn) return;
  LogLine(
      "End ToneMappingPhase1 %d x %d  - min/ave/max Base: %1.2f  %1.2f  %1.2f (vs orig: %1.2f)  -  "
      "Detail: %1.2f  %1.2f  %1.2f\n",
      pWidth, pHeight, Wide(pLayers.fBaseMin), pLayers.fBaseMean, Wide(pLayers.fBaseMax),
      Wide(pInput.fLogMax), Wide(pLayers.fDetailMin), pLayers.fDetailMagnitude, Wide(pLayers.fDetailMax));
}

void cStageLog::Compression(float pExponent, const sToneTables& pTables, const sLayerStatistics& pLayers,
                            const sLuminanceRange& pInput, const sExposureScales& pScales) const {
  if (!fIsOn) return;
  LogLine(
      "GlobalContrast Log10: %1.2f -> GlobalOutMax: %1.2f (vs orig: %1.2f  exposure: %1.2f)  - "
      "DetailOutMax:  %1.2f (vs DetailAverage: %1.2f)\n",
      Wide(pExponent), Wide(pTables.fBaseMax), Pow(10.0, Wide(pInput.fLogMax)), 1.0 / Wide(pScales.fInput),
      Wide(pTables.fDetailMax), Pow(10.0, pLayers.fDetailMagnitude));
}

void cStageLog::ToneMapped(const sToneMappedRange& pRange, double pPixels, const sLuminanceRange& pInput,
                           const sExposureScales& pScales) const {
  if (!fIsOn) return;
  LogLine(
      "Tone Mapped Y Min/Max: [%1.2f  %1.2f] (vs orig [%1.2f  %1.2f]) ave: %1.2f  -> scaling: %1.2f (vs "
      "exposure: %1.2f)\n",
      Wide(pRange.fMin), Wide(pRange.fMax), Wide(pInput.fMin), Wide(pInput.fMax), pRange.fSum / pPixels,
      Scaling(pRange.fMin, pRange.fMax), Wide(pScales.fInput));
}

void cStageLog::BlackAndWhite(const cLuminanceHistogram& pHistogram, const sBlackWhite& pPoints,
                              const sToneMappedRange& pRange) const {
  if (!fIsOn || pHistogram.IsEmpty()) return;
  pHistogram.LogPercentiles();
  LogLine("  ==> Linear Black: %1.2f (vs %1.2f) - White: %1.2f (vs %1.2f)  ->  Scaling:  %1.2f  (vs %1.2f)\n",
          Wide(pPoints.fBlack), Wide(pRange.fMin), Wide(pPoints.fWhite), Wide(pRange.fMax),
          Scaling(pPoints.fBlack, pPoints.fWhite), Scaling(pRange.fMin, pRange.fMax));
}

}  // namespace TmEngine
