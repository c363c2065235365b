#pragma once

#include "engine/image/BitmapRows.h"
#include "engine/image/PixelRows.h"
#include "engine/image/cBitmapLDR.h"
#include "engine/image/cBitmapXYZ32.h"

/// Images as sources and sinks of rows.

namespace TmEngine {

class cImageSource : public cRowSource {
 public:
  /// The image stays the caller's.
  explicit cImageSource(const cBitmapXYZ32& pImage)
      : cRowSource(pImage.GetWidth(), pImage.GetHeight()), fImage(pImage) {}

  void ReadRun(int pY, int pX, int pCount, float* pToX, float* pToY, float* pToZ) const override {
    SplitPixels(RowsOf(fImage).Row(pY) + std::ptrdiff_t{3} * pX, pCount, pToX, pToY, pToZ);
  }

 private:
  const cBitmapXYZ32& fImage;
};

inline unsigned char* PixelRow(cBitmapLDR& pImage, int pY) {
  return pImage.GetBitmapData() + static_cast<std::ptrdiff_t>(pY) * pImage.GetStride();
}
inline const unsigned char* PixelRow(const cBitmapLDR& pImage, int pY) {
  return PixelRow(const_cast<cBitmapLDR&>(pImage), pY);
}

class cImageSink : public cRowSink {
 public:
  /// The image stays the caller's.
  explicit cImageSink(cBitmapLDR& pImage) : fImage(pImage) {}

  int GetWidth() const override { return fImage.GetWidth(); }
  int GetHeight() const override { return fImage.GetHeight(); }
  int GetBitDepth() const override { return fImage.GetBitDepth(); }
  const cColorSpace& GetColorSpace() const override { return *fImage.GetColorSpace(); }
  sSampleRow BeginRow(int pY) override { return {PixelRow(fImage, pY), false}; }
  void EndRow(int) override {}

 private:
  cBitmapLDR& fImage;
};

}  // namespace TmEngine
