#pragma once

#include <cstddef>

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

/// Writes pToSample of each index, of pCount pixels from pOffset on, from column pX of a row on.
template <class tSample, class tToSample>
void PutPixels(const sColorIndices& pIndices, int pOffset, const sSampleRow& pRow, int pX, int pCount,
               const tToSample& pToSample) {
  const int* const first = (pRow.fRedFirst ? pIndices.fR : pIndices.fB) + pOffset;
  const int* const middle = pIndices.fG + pOffset;
  const int* const last = (pRow.fRedFirst ? pIndices.fB : pIndices.fR) + pOffset;
  tSample* to = static_cast<tSample*>(pRow.fSamples) + std::ptrdiff_t{3} * pX;
  for (int i = 0; i < pCount; ++i, to += 3) {
    to[0] = static_cast<tSample>(pToSample(first[i]));
    to[1] = static_cast<tSample>(pToSample(middle[i]));
    to[2] = static_cast<tSample>(pToSample(last[i]));
  }
}

/// Writes all rows: pFill(row, column, pixels, indices) gives what pPut(indices, offset, row, column, pixels)
/// writes of one run. Runs are cut and pCancel is polled as ForEachRun says; false when it is set.
template <class tFill, class tPut>
bool WriteRows(cRowSink& pSink, int pTileHeight, const bool* pCancel, const tFill& pFill, const tPut& pPut) {
  const int width = pSink.GetWidth();
  sColorIndices indices;
  sSampleRow row = {nullptr, false};
  return ForEachRun(width, pSink.GetHeight(), pTileHeight, pCancel, [&](int pY, int pX, int pCount) {
    pFill(pY, pX, pCount, indices);
    ForEachPart(width, pY, pX, pCount, [&](int pRow, int pColumn, int pOffset, int pPart) {
      if (pColumn == 0) row = pSink.BeginRow(pRow);
      pPut(indices, pOffset, row, pColumn, pPart);
      if (pColumn + pPart == width) pSink.EndRow(pRow);
    });
  });
}

/// WriteRows of indices into the encoding table.
template <class tFill>
bool EncodeRows(cRowSink& pSink, int pTileHeight, const unsigned short* pEncoding, const bool* pCancel,
                const tFill& pFill) {
  const int depth = pSink.GetBitDepth();
  return WriteRows(pSink, pTileHeight, pCancel, pFill,
                   [&](const sColorIndices& pIndices, int pOffset, const sSampleRow& pRow, int pX,
                       int pCount) { EncodeRun(pIndices, pOffset, pEncoding, depth, pRow, pX, pCount); });
}

}  // namespace TmEngine
