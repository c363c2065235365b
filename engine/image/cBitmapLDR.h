#pragma once

#include "engine/color/cColorSpace.h"
#include "engine/image/cBitmap.h"

namespace TmEngine {

class cBitmapXYZ32;

/// An integer image in blue, green, red order with the colour space that its samples are encoded in (owned).
class cBitmapLDR : public cBitmap {
 public:
  ~cBitmapLDR() override;
  /// Decodes into D50-relative XYZ. pToXYZ32 must have this image's size.
  virtual void ToXYZ32(cBitmapXYZ32* pToXYZ32) = 0;
  /// Decodes into linear light, samples kept in blue, green, red order.
  virtual void ToBGR32Linear(cBitmapXYZ32* pToBGR32) = 0;
  virtual int GetBitDepth() const = 0;         ///< 8 or 16.
  virtual unsigned char* GetBitmapData() = 0;  ///< First sample of row 0, as bytes.

  const unsigned char* GetBitmapData() const { return const_cast<cBitmapLDR*>(this)->GetBitmapData(); }
  cColorSpace* GetColorSpace() const { return fColorSpace; }  ///< Stays owned by the image.
  void SetColorSpace(cColorSpace* pColorSpace);  ///< Keeps a clone. Throws cArgumentNullException.
  void SetColorSpace(eColorSpaceID pID);         ///< Throws cArgumentException for an unknown id.

 protected:
  cBitmapLDR(int pWidth, int pHeight) : cBitmap(pWidth, pHeight) {}

  cColorSpace* fColorSpace = nullptr;
};

}  // namespace TmEngine
