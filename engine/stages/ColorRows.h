#pragma once

#include <cstddef>

#include "engine/cBitmapU16T.h"
#include "engine/kernels/Kernels.h"

/// What the renderers keep of a pixel's colour, in the 16-bit channels of a tiled image: the smallest and the
/// largest channel of linear working RGB (floats, two channels each), the hue (0 to 65535 for 0 to 360
/// degrees, one channel), and for the tone mapper the luminance (float, two channels), by which its two
/// others are divided. With the hue table they give the three channels back.
///
/// A row holds them as planes one after the other, each as long as the row's padded width, so that they are
/// read and written straight through.

namespace TmEngine {

inline constexpr int kHueChannels = 5;
inline constexpr int kColorChannels = 7;  ///< With luminance.

/// Row pY of pRecords, from column pX on, without luminance.
inline sColorRun HueRun(cBitmapU16T& pRecords, int pY, int pX) {
  const std::ptrdiff_t width = pRecords.GetStride() / (2 * pRecords.GetPlaneCount());  // a multiple of 4
  unsigned short* const row = pRecords.GetRow(pY);
  float* const floats = reinterpret_cast<float*>(row);
  return {floats + pX, floats + width + pX, row + 4 * width + pX, nullptr};
}

/// The same of an image with luminance.
inline sColorRun ColorRun(cBitmapU16T& pRecords, int pY, int pX) {
  const std::ptrdiff_t width = pRecords.GetStride() / (2 * kColorChannels);
  sColorRun run = HueRun(pRecords, pY, pX);
  run.fLuminance = reinterpret_cast<float*>(pRecords.GetRow(pY) + 5 * width) + pX;
  return run;
}

}  // namespace TmEngine
