#pragma once

#include <algorithm>

#include "engine/base/StageFlags.h"

namespace TmEngine {

class cColorSpace;

/// Runs of pixels that are worked on together are at most this long: what belongs to one stays in the
/// processor's nearest cache.
inline constexpr int kRunLength = 1024;

/// Rows that make up a run together. Each step of the work reads what the step before wrote, which is in the
/// cache only when enough was done in between; in narrow pictures, one row is not enough.
inline int RowsOfRun(int pWidth) {
  return pWidth < kRunLength ? kRunLength / pWidth : 1;
}

/// The rows of one run.
struct sRowsOfRun {
  int fFirst;
  int fCount;
};

/// The rows of the run that row pY belongs to. Where a picture lies in tiles of pTileHeight rows, no run
/// crosses from one to the next.
inline sRowsOfRun RunOfRow(int pY, int pWidth, int pHeight, int pTileHeight) {
  const int inTile = pY % pTileHeight;
  const int rows = RowsOfRun(pWidth);
  const int first = inTile - inTile % rows;
  const int start = pY - inTile + first;
  return {start, std::min({rows, pTileHeight - first, pHeight - start})};
}

/// Calls pRun(row, column, count) for each run of a picture: a part of a row, or whole rows one after the
/// other. Polls pCancel (null: never set) once for each row; for rows of one run before the first of them.
/// Returns false when it is set, with the rows from there on left out.
template <class tRun>
bool ForEachRun(int pWidth, int pHeight, int pTileHeight, const bool* pCancel, const tRun& pRun) {
  for (int y = 0; y < pHeight;) {
    const int count = RunOfRow(y, pWidth, pHeight, pTileHeight).fCount;
    for (int row = 0; row < count; ++row) {
      if (IsSet(pCancel)) return false;
    }
    const int pixels = count * pWidth;
    for (int x = 0; x < pixels; x += kRunLength) pRun(y, x, std::min(kRunLength, pixels - x));
    y += count;
  }
  return true;
}

/// Calls pPart(row, column, offset, count) for the part of each row that a run covers; offset counts from the
/// run's first pixel.
template <class tPart>
void ForEachPart(int pWidth, int pY, int pX, int pCount, const tPart& pPart) {
  for (int offset = 0; offset < pCount; ++pY, pX = 0) {
    const int count = std::min(pCount - offset, pWidth - pX);
    pPart(pY, pX, offset, count);
    offset += count;
  }
}

/// Splits pixels of three samples into three planes.
inline void SplitPixels(const float* pPixels, int pCount, float* pTo0, float* pTo1, float* pTo2) {
  for (int i = 0; i < pCount; ++i, pPixels += 3) {
    pTo0[i] = pPixels[0];
    pTo1[i] = pPixels[1];
    pTo2[i] = pPixels[2];
  }
}

/// Where a renderer's input comes from, a run of pixels at a time: linear light, D50-relative XYZ. Rows are
/// read from top to bottom, each from left to right, once per preparation.
class cRowSource {
 public:
  cRowSource(int pWidth, int pHeight) : fWidth(pWidth), fHeight(pHeight) {}
  cRowSource(const cRowSource&) = delete;
  cRowSource& operator=(const cRowSource&) = delete;
  virtual ~cRowSource() = default;

  int GetWidth() const { return fWidth; }
  int GetHeight() const { return fHeight; }

  /// Writes the pCount (at most kRunLength) pixels from column pX of row pY on, one plane per channel.
  virtual void ReadRun(int pY, int pX, int pCount, float* pToX, float* pToY, float* pToZ) const = 0;

 private:
  int fWidth;
  int fHeight;
};

/// A row's samples: three per pixel, without gaps.
struct sSampleRow {
  void* fSamples;
  bool fRedFirst;  ///< Red, green, blue; else blue, green, red.
};

/// Where a renderer's output goes, row by row from top to bottom.
class cRowSink {
 public:
  cRowSink() = default;
  cRowSink(const cRowSink&) = delete;
  cRowSink& operator=(const cRowSink&) = delete;
  virtual ~cRowSink() = default;

  virtual int GetWidth() const = 0;
  virtual int GetHeight() const = 0;
  virtual int GetBitDepth() const = 0;  ///< 8 or 16.
  virtual const cColorSpace& GetColorSpace() const = 0;

  /// Room for row pY, aligned as its samples want it.
  virtual sSampleRow BeginRow(int pY) = 0;
  /// The row is complete.
  virtual void EndRow(int pY) = 0;
};

}  // namespace TmEngine
