#pragma once

namespace TmEngine {

/// Edge-preserving smoothing with a bilateral grid (Chen, Paris, Durand, "Real-time edge-aware image
/// processing with the bilateral grid", SIGGRAPH 2007): pixels are summed into coarse cells over (x, y,
/// value), the grid is blurred with a binomial kernel along each axis, normalised, and read back at each
/// pixel.
///
/// pCancel, pAborted  polled before each row of the picture and of the grid; pTo is then left unfinished
/// pFrom, pTo         pWidth * pHeight floats (log10 luminance), row-major, no padding; pTo is not pFrom
/// pSigmaS            cell size in pixels, above 0
/// pSigmaR            cell size in log10 units, above 0
/// pRangeMin, Max     range of the values in pFrom
/// pLocalContrast     Local Contrast / 100: above 0, the result is smoothed once more (see SmoothWithBox)
/// pWrap              left and right edges meet: the picture continues around them for three pSigmaS
///
/// Throws std::bad_alloc when the grid cannot be had, a range without end included; nothing else.
void FilterWithBilateralGrid(const bool* pCancel, bool* pAborted, const float* pFrom, float* pTo, int pWidth,
                             int pHeight, float pSigmaS, float pSigmaR, float pRangeMin, float pRangeMax,
                             float pLocalContrast, bool pWrap);

}  // namespace TmEngine
