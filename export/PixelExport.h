#pragma once

#include <memory>
#include <vector>

#include "engine/color/cColorSpace.h"
#include "engine/image/PixelRows.h"
#include "export/quorvane.h"

/// Writes finished rows into the host's buffer (see quorvane.h). For 16 bits and the host's own order, the
/// high bytes of some sampled pixels are written to standard error.
class cHostSink : public TmEngine::cRowSink {
 public:
  /// pImage.output_bits is 8 or 16. This and BeginRow throw std::bad_alloc.
  cHostSink(const tm_quorvane_image& pImage, TmEngine::eColorSpaceID pID, void* pPixels);

  int GetWidth() const override { return fImage.width; }
  int GetHeight() const override { return fImage.height; }
  int GetBitDepth() const override { return fImage.output_bits; }
  const TmEngine::cColorSpace& GetColorSpace() const override { return *fColorSpace; }
  TmEngine::sSampleRow BeginRow(int pY) override;
  void EndRow(int pY) override;

 private:
  tm_quorvane_image fImage;
  std::unique_ptr<TmEngine::cColorSpace> fColorSpace;
  unsigned char* fPixels;
  bool fIsDirect;                    // rows are written where the host wants them
  std::vector<unsigned short> fRow;  // blue, green, red; empty when direct
};
