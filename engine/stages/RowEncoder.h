#pragma once

#include "engine/image/PixelRows.h"

namespace TmEngine {

/// Indices of 65,536-entry tables for the three channels of a run of pixels.
struct sColorIndices {
  int fR[kRunLength];
  int fG[kRunLength];
  int fB[kRunLength];
};

/// Writes pCount pixels, of the indices from pOffset on, from column pX of a row on. pEncoding: 65,536
/// entries, linear output light to 16-bit samples; 8-bit samples are their high bytes.
void EncodeRun(const sColorIndices& pIndices, int pOffset, const unsigned short* pEncoding, int pBitDepth,
               const sSampleRow& pRow, int pX, int pCount);

/// Writes all rows: pFill(row, column, pixels, indices) gives the indices into the encoding table of one run.
/// Runs are cut and pCancel is polled as ForEachRun says; false when it is set.
template <class tFill>
bool EncodeRows(cRowSink& pSink, int pTileHeight, const unsigned short* pEncoding, const bool* pCancel,
                const tFill& pFill) {
  const int width = pSink.GetWidth();
  sColorIndices indices;
  sSampleRow row = {nullptr, false};
  return ForEachRun(width, pSink.GetHeight(), pTileHeight, pCancel, [&](int pY, int pX, int pCount) {
    pFill(pY, pX, pCount, indices);
    ForEachPart(width, pY, pX, pCount, [&](int pRow, int pColumn, int pOffset, int pPart) {
      if (pColumn == 0) row = pSink.BeginRow(pRow);
      EncodeRun(indices, pOffset, pEncoding, pSink.GetBitDepth(), row, pColumn, pPart);
      if (pColumn + pPart == width) pSink.EndRow(pRow);
    });
  });
}

}  // namespace TmEngine
