#pragma once

#include <cstddef>

#include "engine/cBitmapLDR.h"
#include "engine/cMatrix33.h"
#include "engine/stages/HueTable.h"

/// Rows of 8- and 16-bit images, for row bodies; no interface shows the templates.

namespace TmEngine {

inline unsigned char* PixelRow(cBitmapLDR& pImage, int pY) {
  return pImage.GetBitmapData() + static_cast<std::ptrdiff_t>(pY) * pImage.GetStride();
}
inline const unsigned char* PixelRow(const cBitmapLDR& pImage, int pY) {
  return PixelRow(const_cast<cBitmapLDR&>(pImage), pY);
}

/// What a row of working colours is encoded with, and where to.
struct sEncodedRow {
  void* fSamples;  ///< Blue, green, red; fWidth * 3 of them.
  int fWidth;
  int fBitDepth;                    ///< 8 or 16.
  const unsigned short* fEncoding;  ///< Linear light to 16-bit samples; 8-bit ones are their high bytes.
  cMatrix33 fColorMatrix;           ///< From linear working RGB to linear output RGB.
};

inline void StoreSample(unsigned char* pTo, unsigned short pCode) {
  *pTo = static_cast<unsigned char>(pCode >> 8);
}
inline void StoreSample(unsigned short* pTo, unsigned short pCode) {
  *pTo = pCode;
}

template <class tSample, class tColorAt, class tToIndex>
void EncodeSamples(tSample* pTo, const sEncodedRow& pRow, const tColorAt& pColorAt,
                   const tToIndex& pToIndex) {
  const cMatrix33 m = pRow.fColorMatrix;
  for (int x = 0; x < pRow.fWidth; ++x, pTo += 3) {
    const cHueTable::sColor c = pColorAt(x);
    StoreSample(pTo + 2, pRow.fEncoding[pToIndex(m[0] * c.fR + m[1] * c.fG + m[2] * c.fB)]);
    StoreSample(pTo + 1, pRow.fEncoding[pToIndex(m[3] * c.fR + m[4] * c.fG + m[5] * c.fB)]);
    StoreSample(pTo, pRow.fEncoding[pToIndex(m[6] * c.fR + m[7] * c.fG + m[8] * c.fB)]);
  }
}

/// Writes exactly fWidth pixels: pColorAt(x) gives the working colour, pToIndex a channel's index into the
/// encoding table.
template <class tColorAt, class tToIndex>
void EncodeRow(const sEncodedRow& pRow, const tColorAt& pColorAt, const tToIndex& pToIndex) {
  if (pRow.fBitDepth == 16) {
    EncodeSamples(static_cast<unsigned short*>(pRow.fSamples), pRow, pColorAt, pToIndex);
  } else {
    EncodeSamples(static_cast<unsigned char*>(pRow.fSamples), pRow, pColorAt, pToIndex);
  }
}

}  // namespace TmEngine
