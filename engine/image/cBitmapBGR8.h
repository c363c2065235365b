#pragma once

#include <memory>

#include "engine/image/cBitmapLDR.h"

namespace TmEngine {

class cTransferLUT_I8F32;
class cTransferLUT_F32I8;

/// Three unsigned 8-bit samples per pixel: blue, green, red. Strides are in bytes.
class cBitmapBGR8 : public cBitmapLDR {
 public:
  /// Throws cArgumentException (sizes) or cOutOfMemoryException and sets pStride. The block is not cleared.
  static unsigned char* AllocBitmapData(int pWidth, int pHeight, int& pStride);
  /// Writes a line to standard error, then frees. Throws cArgumentNullException for null.
  static void FreeBitmapData(unsigned char* pBGR8);

  cBitmapBGR8(int pWidth, int pHeight, eColorSpaceID pID);
  cBitmapBGR8(int pWidth, int pHeight, cColorSpace* pReferentColorSpace);  ///< Keeps a clone of the space.
  /// A copy of the caller's pixels.
  cBitmapBGR8(int pFromWidth, int pFromHeight, int pFromStride, unsigned char* pFromBGR8, eColorSpaceID pID);
  ~cBitmapBGR8() override;

  void ToXYZ32(cBitmapXYZ32* pToXYZ32) override;
  void ToBGR32Linear(cBitmapXYZ32* pToBGR32) override;
  int GetBitDepth() const override;
  unsigned char* GetBitmapData() override;
  using cBitmapLDR::GetBitmapData;

  /// Hands the pixel block to the caller, who frees it with std::free; the image is then 0 x 0. For owners
  /// that must not write the line of FreeBitmapData.
  unsigned char* TakeBitmapData();

  /// pFromStride at least 3 * width. Equal strides copy the padding too; otherwise padding stays as it is.
  void CopyFromBGR8(int pFromWidth, int pFromHeight, int pFromStride, unsigned char* pFromBGR8);
  void CopyToBGR8(unsigned char* pDstBGR8, int pDstWidth, int pDstHeight, int pDstStride);

  /// Decodes with the caller's table and RGB-to-XYZ matrix.
  void ToXYZ32(cBitmapXYZ32* pToXYZ32, cTransferLUT_I8F32* pCustomTransferLUT, cMatrix33 pMatrix);
  /// Encodes D50-relative XYZ through the image's own colour space.
  void FromXYZ32(cBitmapXYZ32* pFromXYZ32);
  /// Encodes with the caller's table and XYZ-to-RGB matrix.
  void FromXYZ32(cBitmapXYZ32* pFromXYZ32, cTransferLUT_F32I8* pCustomTransferLUT, cMatrix33 pMatrix);

 private:
  using tBlock = std::unique_ptr<unsigned char, sFreeBlock>;

  unsigned char* fBGR8 = nullptr;
};

}  // namespace TmEngine
