#pragma once

#include "engine/cMatrix33.h"

namespace TmEngine {

class cBitmapU16T;
class cBitmapXYZ32;

/// Smallest and largest luminance of a picture, none below 2^-128, and their base-10 logarithms.
struct sLuminanceRange {
  float fMin = 0.0f;
  float fMax = 0.0f;
  float fLogMin = 0.0f;
  float fLogMax = 0.0f;
};

/// Fills a record (see ColorRecord) for each pixel of pInput (D50-relative XYZ): luminance, hue, and the
/// smallest and largest channel of its chromaticity at unit luminance. pXYZToWorking leads to the working RGB
/// space. A pixel without positive luminance counts as grey of luminance 1e-6. Polls pCancel before each row;
/// sets pAborted and returns when it is set.
void FillColorRecords(const bool* pCancel, bool* pAborted, const cBitmapXYZ32& pInput,
                      const cMatrix33& pXYZToWorking, cBitmapU16T& pRecords);

/// Writes log10 of each pixel's luminance, at least 2^-128, to pLogLuminance (width * height floats) and
/// measures the range. Polls pCancel before each row; sets pAborted and returns when it is set.
void MeasureLogLuminance(const bool* pCancel, bool* pAborted, const cBitmapXYZ32& pInput,
                         float* pLogLuminance, sLuminanceRange& pRange);

}  // namespace TmEngine
