#pragma once

#include <cstddef>

#include "engine/base/cMemUtils.h"
#include "engine/image/PixelRows.h"
#include "engine/image/cBitmapU16T.h"
#include "engine/kernels/Kernels.h"

/// What the renderers keep of a pixel's colour, in the 16-bit channels of a tiled image: the smallest and the
/// largest channel of linear working RGB (floats, two channels each), the hue (0 to 65535 for 0 to 360
/// degrees, one channel), and for the tone mapper the luminance (float, two channels), by which its two
/// others are divided. With the hue table they give the three channels back.
///
/// The rows of a run (see PixelRows.h) hold them as planes one after the other, pixel after pixel without
/// gaps, so that they are read and written straight through.

namespace TmEngine {

inline constexpr int kHueChannels = 5;
inline constexpr int kColorChannels = 7;  ///< With luminance.

/// Pixels in the longest row whose records of pChannels fit into a tile.
constexpr int LongestRow(int pChannels) {
  return static_cast<int>(cMemUtils::kMaxTileBytes / (2 * pChannels) / 4 * 4);
}

/// What pRecords hold from column pX of row pY to the end of the run.
inline sColorRun ColorRun(cBitmapU16T& pRecords, int pY, int pX) {
  const auto rows = RunOfRow(pY, pRecords.GetWidth(), pRecords.GetHeight(), pRecords.GetTileHeight());
  const std::ptrdiff_t paddedWidth = pRecords.GetStride() / (2 * pRecords.GetPlaneCount());
  const std::ptrdiff_t plane = paddedWidth * rows.fCount;  // a multiple of 4
  const std::ptrdiff_t at = std::ptrdiff_t{pY - rows.fFirst} * pRecords.GetWidth() + pX;
  unsigned short* const first = pRecords.GetRow(rows.fFirst);
  float* const floats = reinterpret_cast<float*>(first);
  sColorRun run = {floats + at, floats + plane + at, first + 4 * plane + at, nullptr};
  if (pRecords.GetPlaneCount() == kColorChannels)
    run.fLuminance = reinterpret_cast<float*>(first + 5 * plane) + at;
  return run;
}

}  // namespace TmEngine
