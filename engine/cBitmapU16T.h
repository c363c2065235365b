#pragma once

#include <cstddef>

#include "engine/cBitmap.h"

namespace TmEngine {

/// A tiled image of a chosen number of 16-bit channels a pixel (see cMemUtils::TiledBitmapAlloc).
class cBitmapU16T : public cBitmap {
 public:
  /// Throws cArgumentException (sizes, channels), cInvalidOperationException (a row over 10 MiB) or
  /// cOutOfMemoryException.
  cBitmapU16T(int pWidth, int pHeight, int pPlane);
  ~cBitmapU16T() override;

  int GetPlaneCount() const { return fPlane; }
  int GetTileCount() const { return fTileCount; }
  int GetTileHeight() const { return fTileHeight; }

  /// First element of row pY (not checked); pixel x starts at element x * GetPlaneCount().
  unsigned short* GetRow(int pY) {
    return static_cast<unsigned short*>(fTiles[pY / fTileHeight]) +
           static_cast<std::ptrdiff_t>(fStride / 2) * (pY % fTileHeight);
  }
  const unsigned short* GetRow(int pY) const { return const_cast<cBitmapU16T*>(this)->GetRow(pY); }

 private:
  int fPlane = 0;
  void** fTiles = nullptr;
  int fTileCount = 0;
  int fTileHeight = 0;
};

}  // namespace TmEngine
