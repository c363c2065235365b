#pragma once

namespace TmEngine {

/// Ranges and means of the base and detail layers, in log10 units.
struct sLayerStatistics {
  float fBaseMax = -1e30f;
  float fBaseMin = 1e30f;
  float fDetailMax = -1e30f;
  float fDetailMin = 1e30f;
  double fBaseMean = 0.0;
  double fDetailMagnitude = 0.0;  ///< Mean of the absolute values.
};

/// Writes pDetail = pLogLuminance - pBase and measures both layers. Planes are pWidth * pHeight floats.
/// Polls pCancel before each row; sets pAborted and returns when it is set.
void FormDetailLayer(const bool* pCancel, bool* pAborted, const float* pLogLuminance, const float* pBase,
                     float* pDetail, int pWidth, int pHeight, sLayerStatistics& pStatistics);

}  // namespace TmEngine
