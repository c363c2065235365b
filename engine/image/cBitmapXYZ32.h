#pragma once

#include "engine/image/cBitmap.h"

namespace TmEngine {

/// Three floats per pixel: CIE XYZ (D50-relative, white has Y = 1), or linear light in the order that the
/// operation which filled it states. Rows advance by fStride / 4 floats.
class cBitmapXYZ32 : public cBitmap {
 public:
  /// Throws cArgumentException (sizes) or cOutOfMemoryException and sets pStride. The block is not cleared.
  static float* AllocBitmapData(int pWidth, int pHeight, int& pStride);
  /// Throws cArgumentNullException for null.
  static void FreeBitmapData(float* pXYZ32);

  cBitmapXYZ32(int pWidth, int pHeight);
  explicit cBitmapXYZ32(const cBitmapXYZ32* pFrom);
  ~cBitmapXYZ32() override;

  float* GetBitmapData() { return fXYZ32; }
  const float* GetBitmapData() const { return fXYZ32; }

  /// pFromStride in bytes, at least 12 * width.
  void CopyFromXYZ32(int pFromWidth, int pFromHeight, int pFromStride, const float* pFromXYZ32);
  /// Writes samples in [0, 1] as truncate(v * 255), clamped, order kept; NaN gives 0.
  void BGRFloatToBGR8Data(int pToWidth, int pToHeight, int pToStride, unsigned char* pToBGR8) const;

 private:
  float* fXYZ32 = nullptr;
};

}  // namespace TmEngine
