#pragma once

#include <cstddef>

#include "engine/image/cBitmap.h"

namespace TmEngine {

class cBitmapXYZ32;

/// The tiled twin of cBitmapXYZ32: three floats per pixel (see cMemUtils::TiledBitmapAlloc).
class cBitmapXYZ32T : public cBitmap {
 public:
  cBitmapXYZ32T(int pWidth, int pHeight);
  explicit cBitmapXYZ32T(const cBitmapXYZ32* pFrom);
  ~cBitmapXYZ32T() override;

  int GetTileCount() const { return fTileCount; }
  int GetTileHeight() const { return fTileHeight; }

  /// pFromStride in bytes, at least 12 * width.
  void CopyFromXYZ32(int pFromWidth, int pFromHeight, int pFromStride, const float* pFromXYZ32);

  /// First float of row pY (not checked).
  float* GetRow(int pY) {
    return static_cast<float*>(fTiles[pY / fTileHeight]) +
           static_cast<std::ptrdiff_t>(fStride / 4) * (pY % fTileHeight);
  }
  const float* GetRow(int pY) const { return const_cast<cBitmapXYZ32T*>(this)->GetRow(pY); }

 private:
  cBitmapXYZ32T() = default;
  void AllocTiles(const sThrowPlace& pPlace);

  void** fTiles = nullptr;
  int fTileCount = 0;
  int fTileHeight = 0;
};

}  // namespace TmEngine
