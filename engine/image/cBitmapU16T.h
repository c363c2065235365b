#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/image/cBitmap.h"

namespace TmEngine {

class cLargeRegion;

/// A tiled image of a chosen number of 16-bit channels per pixel (see cMemUtils::TiledBitmapAlloc).
class cBitmapU16T : public cBitmap {
 public:
  /// Throws cArgumentException (sizes, channels), cInvalidOperationException (a row over 10 MiB) or
  /// cOutOfMemoryException.
  /// One tile in pRegion, which must outlive the image, where the region has room for it.
  cBitmapU16T(int pWidth, int pHeight, int pPlane, cLargeRegion* pRegion = nullptr);
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
  bool TakeFrom(cLargeRegion& pRegion, std::int64_t pPixelBytes);

  void** fTiles = nullptr;
  void* fRegionTile = nullptr;  // the only one, where the image lies in a region
  int fTileCount = 0;
  int fTileHeight = 0;
};

}  // namespace TmEngine
