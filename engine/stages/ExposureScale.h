#pragma once

namespace TmEngine {

/// Factors that bring compressed luminance to a usable exposure when black and white points are not
/// stretched.
struct sExposureScales {
  float fInput = 1.0f;  ///< Referred to the largest luminance of the picture.
  float fBase = 1.0f;   ///< Referred to the largest value of the base layer.
};

/// pExponent: the base layer's. pLargestLuminance: linear. pBaseMax: log10.
sExposureScales ExposureScales(float pExponent, float pLargestLuminance, float pBaseMax);

}  // namespace TmEngine
