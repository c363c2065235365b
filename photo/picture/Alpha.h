#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "photo/picture/Picture.h"
#include "photo/picture/ResultPixels.h"

namespace Photo {

/// Alpha as sPicture holds it. 8 bits come back exactly; floats are clamped to [0, 1] and rounded, NaN is 0.
inline std::uint16_t AlphaOf8Bits(unsigned pAlpha) {
  return static_cast<std::uint16_t>(pAlpha * 257);
}
inline std::uint16_t AlphaOfFloat(float pAlpha) {
  if (!(pAlpha > 0.0f)) return 0;
  return static_cast<std::uint16_t>(std::lround(std::min(static_cast<double>(pAlpha), 1.0) * 65535.0));
}

/// What alpha means for a premultiplied picture that has been read. Light that is covered everywhere is
/// divided by alpha, so that the picture is as one that was stored straight. A picture with light of its own
/// (a flame, glow: where alpha is 0, or far above what alpha lets through of the covered light) stays
/// premultiplied as a whole.
void SettleAlpha(sPicture& pPicture);

/// Nobody sees the colour of a fully transparent pixel, so it must not count in what the engine measures. Of
/// t such pixels, the k-th in the order of rows takes the colour of visible pixel k * n / t of n: visible
/// pixels evenly picked from all over the picture, so that shares, quantiles and means stay those of the
/// visible ones. A picture without visible pixels, or premultiplied, stays as it is.
void HideTransparent(sPicture& pPicture);

/// Makes the fully transparent pixels of the result black, unless pPicture is premultiplied.
void BlackenTransparent(cResultPixels& pResult, const sPicture& pPicture);

}  // namespace Photo
