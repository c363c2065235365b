#pragma once

namespace TmEngine {

/// Smooths pFrom into pTo (which may be pFrom) with a box of fractional radius, applied three times along
/// rows and columns and divided by the weight that lies inside the picture. pFrom, pTo: pWidth * pHeight
/// floats, row-major, no padding. pSigma in pixels; 0, less, or NaN copies. Throws std::bad_alloc, nothing
/// else. Polls pCancel (null: never set) before each row; when it is set, returns false and leaves pTo
/// unfinished.
bool SmoothWithBox(const float* pFrom, float* pTo, int pWidth, int pHeight, float pSigma,
                   const bool* pCancel = nullptr);

}  // namespace TmEngine
