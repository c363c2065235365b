#pragma once

#include <cstddef>
#include <vector>

#include "engine/image/PixelRows.h"
#include "engine/math/cMatrix33.h"
#include "export/quorvane.h"

/// The host's pixels (see quorvane.h for their layout) as linear light. They must stay until the last row is
/// read.
class cHostSource : public TmEngine::cRowSource {
 public:
  /// pGamma: decoding gamma of 8- and 16-bit samples. pRGBToXYZ: of the host's colour space. Throws
  /// std::bad_alloc.
  cHostSource(const tm_quorvane_image& pImage, double pGamma, const TmEngine::cMatrix33& pRGBToXYZ,
              const void* pPixels);
  /// Rows of 8- or 16-bit samples with gaps, or from the last one up. pRowBytes: from one row to the next.
  cHostSource(const tm_quorvane_image& pImage, double pGamma, const TmEngine::cMatrix33& pRGBToXYZ,
              const void* pPixels, std::ptrdiff_t pRowBytes);

  void ReadRun(int pY, int pX, int pCount, float* pToX, float* pToY, float* pToZ) const override;

 private:
  tm_quorvane_image fImage;
  TmEngine::cMatrix33 fRGBToXYZ;
  const unsigned char* fPixels;
  std::ptrdiff_t fRowBytes;   // not used by RGBE
  std::vector<float> fTable;  // linear light of each code, or the factor of each shared exponent
};
