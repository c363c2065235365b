#pragma once

#include <cstdint>

namespace TmEngine {

/// Ranges and means of the base and detail layers, in log10 units; detail is log luminance minus base.
struct sLayerStatistics {
  float fBaseMax = -1e30f;
  float fBaseMin = 1e30f;
  float fDetailMax = -1e30f;
  float fDetailMin = 1e30f;
  double fBaseMean = 0.0;
  double fDetailMagnitude = 0.0;  ///< Mean of the absolute values.

  /// Adds a row to ranges and sums. The sums depend on the order: rows down, pixels left to right.
  void AddRow(const float* pLogLuminance, const float* pBase, int pWidth);
  /// Turns the sums into means.
  void Finish(std::int64_t pPixels);
};

}  // namespace TmEngine
