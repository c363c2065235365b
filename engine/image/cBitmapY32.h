#pragma once

#include "engine/image/cBitmap.h"

namespace TmEngine {

/// One float per pixel, for luminance and other planes. Rows advance by fStride / 4 floats.
class cBitmapY32 : public cBitmap {
 public:
  /// Throws cArgumentException (sizes) or cOutOfMemoryException and sets pStride. The block is not cleared.
  static float* AllocBitmapData(int pWidth, int pHeight, int& pStride);
  /// Throws cArgumentNullException for null.
  static void FreeBitmapData(float* pY32);

  cBitmapY32(int pWidth, int pHeight);
  ~cBitmapY32() override;

  float* GetBitmapData() { return fY32; }
  const float* GetBitmapData() const { return fY32; }

 private:
  float* fY32 = nullptr;
};

}  // namespace TmEngine
