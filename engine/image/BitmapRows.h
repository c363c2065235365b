#pragma once

#include <cstddef>

#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapBGR8.h"
#include "engine/image/cBitmapXYZ32.h"
#include "engine/image/cBitmapY8.h"

/// The walk over rows, for sources that work on pixels; no interface shows it.

namespace TmEngine {

/// The rows of an untiled image: top to bottom, padding never looked at.
template <class tSample>
struct sRows {
  tSample* fFirst;
  std::ptrdiff_t fStride;  ///< Samples from one row to the next.
  int fWidth;              ///< Pixels.
  int fHeight;

  tSample* Row(int pY) const { return fFirst + fStride * pY; }
};

template <class tSample>
sRows<tSample> RowsOf(tSample* pFirst, const cBitmap& pImage) {
  return {pFirst, pImage.GetStride() / static_cast<int>(sizeof(tSample)), pImage.GetWidth(),
          pImage.GetHeight()};
}

inline sRows<const float> RowsOf(const cBitmapXYZ32& pImage) {
  return RowsOf(pImage.GetBitmapData(), pImage);
}
inline sRows<float> RowsOf(cBitmapXYZ32& pImage) {
  return RowsOf(pImage.GetBitmapData(), pImage);
}
inline sRows<const unsigned char> RowsOf(const cBitmapBGR8& pImage) {
  return RowsOf(pImage.GetBitmapData(), pImage);
}
inline sRows<unsigned char> RowsOf(cBitmapBGR8& pImage) {
  return RowsOf(pImage.GetBitmapData(), pImage);
}
inline sRows<const unsigned short> RowsOf(const cBitmapBGR16& pImage) {
  return RowsOf(pImage.GetBGR16Data(), pImage);
}
inline sRows<unsigned short> RowsOf(cBitmapBGR16& pImage) {
  return RowsOf(pImage.GetBGR16Data(), pImage);
}
inline sRows<const unsigned char> RowsOf(const cBitmapY8& pImage) {
  return RowsOf(pImage.GetBitmapData(), pImage);
}
inline sRows<unsigned char> RowsOf(cBitmapY8& pImage) {
  return RowsOf(pImage.GetBitmapData(), pImage);
}

/// Asks for the memory that a walk over floats comes to soon. For loops that wait for their own sums or for
/// large tables: the processor asks for too little ahead of them.
inline void PrefetchAhead(const float* pAt, std::ptrdiff_t pFloatsAhead = 384) {
  __builtin_prefetch(pAt + pFloatsAhead);
}

/// Calls pBody(source row, destination row, pixels) for two images of one size.
template <class tFrom, class tTo, class tBody>
void ForEachRow(const sRows<tFrom>& pFrom, const sRows<tTo>& pTo, const tBody& pBody) {
  for (int y = 0; y < pFrom.fHeight; ++y) pBody(pFrom.Row(y), pTo.Row(y), pFrom.fWidth);
}

/// Calls pBody with each pixel's three samples, row by row.
template <class tSample, class tBody>
void ForEachPixel(const sRows<tSample>& pRows, const tBody& pBody) {
  for (int y = 0; y < pRows.fHeight; ++y) {
    tSample* pixel = pRows.Row(y);
    for (int x = 0; x < pRows.fWidth; ++x, pixel += 3) pBody(pixel);
  }
}

}  // namespace TmEngine
