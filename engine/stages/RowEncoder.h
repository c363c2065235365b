#pragma once

#include <algorithm>

#include "engine/PixelRows.h"

namespace TmEngine {

/// Indices of 65,536-entry tables for the three channels of a run of pixels.
struct sColorIndices {
  int fR[kRunLength];
  int fG[kRunLength];
  int fB[kRunLength];
};

/// Writes the pixels of a run from column pX of a row on. pEncoding: 65,536 entries, linear output light to
/// 16-bit samples; 8-bit samples are their high bytes.
void EncodeRun(const sColorIndices& pIndices, const unsigned short* pEncoding, int pBitDepth,
               const sSampleRow& pRow, int pX, int pCount);

/// Writes row pY: pFill(column, pixels, indices) gives the indices into the encoding table of one run.
template <class tFill>
void EncodeRow(cRowSink& pSink, int pY, const unsigned short* pEncoding, const tFill& pFill) {
  sColorIndices indices;
  const sSampleRow row = pSink.BeginRow(pY);
  for (int start = 0; start < pSink.GetWidth(); start += kRunLength) {
    const int count = std::min(kRunLength, pSink.GetWidth() - start);
    pFill(start, count, indices);
    EncodeRun(indices, pEncoding, pSink.GetBitDepth(), row, start, count);
  }
  pSink.EndRow(pY);
}

}  // namespace TmEngine
