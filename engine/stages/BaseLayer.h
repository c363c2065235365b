#pragma once

#include "engine/stages/LayerStatistics.h"

namespace TmEngine {

struct sStageRun;

/// How the base layer is formed.
struct sBaseFilter {
  float fSigmaS;    ///< Cell size in pixels, above 0.
  float fSigmaR;    ///< Cell size in log10 units, above 0.
  float fRangeMin;  ///< Range of the log luminance.
  float fRangeMax;
  float fLocalContrast;  ///< Local Contrast / 100: above 0, the base is smoothed once more.
  bool fWrap;            ///< Left and right edges meet: see cBilateralGrid::Splat.
};

/// Smooths the log luminance with a bilateral grid (see cBilateralGrid) into pBase, and with a box where
/// Local Contrast asks for it, and measures base and detail. Planes are pWidth * pHeight floats, row-major,
/// no padding. Polls before each row of the picture and of the grid; false, with pBase unfinished,
/// when stopped. Throws std::bad_alloc without memory for the grid, and for a grid beyond
/// cBilateralGrid::IsWithinBounds; nothing else.
bool FormBaseLayer(const sStageRun& pRun, const float* pLogLuminance, float* pBase, int pWidth, int pHeight,
                   const sBaseFilter& pFilter, sLayerStatistics& pStatistics);

}  // namespace TmEngine
