#pragma once

#include <memory>

#include "engine/image/cBitmapLDR.h"

namespace TmEngine {

class cBitmapBGR8;
class cTransferLUT_F32I16;

/// Three unsigned 16-bit samples per pixel: blue, green, red, native byte order. Strides are in bytes.
class cBitmapBGR16 : public cBitmapLDR {
 public:
  /// Throws cArgumentException (sizes) or cOutOfMemoryException and sets pStride. The block is not cleared.
  static unsigned short* AllocBitmapData(int pWidth, int pHeight, int& pStride);
  /// Throws cArgumentNullException for null.
  static void FreeBitmapData(unsigned short* pBGR16);
  /// A new image with a copy of the caller's pixels, owned by the caller.
  static cBitmapBGR16* FromBGR16Data(int pFromWidth, int pFromHeight, int pFromStride,
                                     unsigned char* pFromBGR16, eColorSpaceID pID);

  cBitmapBGR16(int pWidth, int pHeight, eColorSpaceID pID);
  cBitmapBGR16(int pWidth, int pHeight, cColorSpace* pReferentColorSpace);  ///< Keeps a clone of the space.
  ~cBitmapBGR16() override;

  int GetStride() const override;
  void ToXYZ32(cBitmapXYZ32* pToXYZ32) override;
  void ToBGR32Linear(cBitmapXYZ32* pToBGR32) override;
  int GetBitDepth() const override;
  unsigned char* GetBitmapData() override;
  using cBitmapLDR::GetBitmapData;
  virtual unsigned short* GetBGR16Data();
  const unsigned short* GetBGR16Data() const { return fBGR16; }

  /// pFromStride at least 6 * width. Equal strides copy the padding too; otherwise padding stays as it is.
  void CopyFromBGR16(int pFromWidth, int pFromHeight, int pFromStride, unsigned char* pFromBGR16);
  /// Takes red, green, blue samples and turns them into the image's order.
  void CopyFromLittleEndianRGB16(int pFromWidth, int pFromHeight, int pFromStride,
                                 unsigned short* pFromLERGB16);

  void FromBGR8(cBitmapBGR8* pFromBGR8);  ///< s * 257
  void ToBGR8(cBitmapBGR8* pToBGR8);      ///< floor(s / 257)
  /// Encodes D50-relative XYZ through the image's own colour space.
  void FromXYZ32(cBitmapXYZ32* pFromXYZ32);
  /// Encodes with the caller's table and XYZ-to-RGB matrix.
  void FromXYZ32(cBitmapXYZ32* pFromXYZ32, cTransferLUT_F32I16* pCustomTransferLUT, cMatrix33 pMatrix);

 private:
  using tBlock = std::unique_ptr<unsigned short, sFreeBlock>;

  unsigned short* fBGR16 = nullptr;
};

}  // namespace TmEngine
