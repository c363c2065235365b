#pragma once

#include "engine/math/cMatrix33.h"

namespace TmEngine {

class cBitmapU16T;
class cRowSource;
struct sStageRun;

/// Smallest and largest luminance of a picture, none below 2^-128, and their base-10 logarithms.
struct sLuminanceRange {
  float fMin = 0.0f;
  float fMax = 0.0f;
  float fLogMin = 0.0f;
  float fLogMax = 0.0f;
};

/// Reads the picture once and writes for each pixel
/// - its record (see ColorRows.h): luminance, hue, and the smallest and largest channel of its chromaticity
///   at unit luminance; pXYZToWorking leads to the working RGB space. A pixel without positive luminance
///   counts as grey of luminance 1e-6;
/// - log10 of its luminance, at least 2^-128, to pLogLuminance (width * height floats).
/// Measures the range as well. Polls for each row (see ForEachRun); false when stopped.
bool PrepareColors(const sStageRun& pRun, const cRowSource& pInput, const cMatrix33& pXYZToWorking,
                   cBitmapU16T& pRecords, float* pLogLuminance, sLuminanceRange& pRange);

}  // namespace TmEngine
