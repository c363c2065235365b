#pragma once

#include "engine/image/cBitmap.h"

namespace TmEngine {

class cBitmapLDR;

/// One byte per pixel: grey as ITU-R BT.601 luma of encoded samples, in 16-bit fixed point.
class cBitmapY8 : public cBitmap {
 public:
  /// Throws cArgumentException (sizes) or cOutOfMemoryException and sets pStride. The block is not cleared.
  static unsigned char* AllocBitmapData(int pWidth, int pHeight, int& pStride);
  /// Throws cArgumentNullException for null.
  static void FreeBitmapData(unsigned char* pY8);

  // Factories: a new image, owned by the caller. Strides in bytes.
  static cBitmapY8* FromBGR8(unsigned char* pSrcBGR8, int pSrcWidth, int pSrcHeight, int pSrcStride);
  static cBitmapY8* FromBGR16(unsigned short* pSrcBGR16, int pSrcWidth, int pSrcHeight, int pSrcStride);
  static cBitmapY8* FromBitmapLDR(cBitmapLDR* pSrcLDR);  ///< Null for a depth other than 8 or 16.

  cBitmapY8(int pWidth, int pHeight);
  ~cBitmapY8() override;

  unsigned char* GetBitmapData() { return fY8; }
  const unsigned char* GetBitmapData() const { return fY8; }

  void CopyToBGR8(unsigned char* pDstBGR8, int pDstWidth, int pDstHeight, int pDstStride);

 private:
  unsigned char* fY8 = nullptr;
};

}  // namespace TmEngine
