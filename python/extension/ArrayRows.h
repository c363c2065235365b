#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "engine/color/cColorSpace.h"
#include "engine/image/PixelRows.h"
#include "export/PixelImport.h"
#include "photo/light/RowConverter.h"
#include "photo/picture/PictureRows.h"
#include "python/extension/PixelArray.h"

namespace Python {

/// The rows of an array of floats, repaired as those of a file. Alpha is left out.
class cFloatRows : public Photo::cPictureRows {
 public:
  cFloatRows(const sPixelArray& pPixels, const Photo::sLinearLight& pLight);

  bool Read(int pY, float* pTo, std::uint16_t*) override;
  void Hold() override { fLight.Hold(); }
  std::optional<Photo::sRepairs> Finish() override { return fLight.Finish(); }

 private:
  sPixelArray fPixels;
  Photo::cRowConverter fLight;
};

/// The rows of an array of integers, decoded as the exported function does. Packed rows are read where they
/// are, others are packed one by one.
class cIntegerSource : public TmEngine::cRowSource {
 public:
  cIntegerSource(const sPixelArray& pPixels, TmEngine::eColorSpaceID pSpace);

  void ReadRun(int pY, int pX, int pCount, float* pToX, float* pToY, float* pToZ) const override;

 private:
  sPixelArray fPixels;
  mutable std::vector<unsigned char>
      fRow;             ///< For the engine the source is constant. Empty where not needed.
  mutable int fY = -1;  ///< The row in fRow.
  std::unique_ptr<cHostSource> fSource;
};

/// Takes the renderer's rows into an array, beside the alpha of the input.
class cArraySink : public TmEngine::cRowSink {
 public:
  /// pTo: of integers, as large as pFrom and with as many channels; it may be the same. pStart: the column
  /// of the picture that the rows begin with. pDithers, for 8 bits: see Photo::cResultSink.
  cArraySink(const sPixelArray& pFrom, const sPixelArray& pTo, TmEngine::eColorSpaceID pSpace, int pStart,
             bool pDithers);

  int GetWidth() const override { return fTo.fWidth; }
  int GetHeight() const override { return fTo.fHeight; }
  int GetBitDepth() const override { return fDithers ? 16 : 8 * fTo.SampleBytes(); }
  const TmEngine::cColorSpace& GetColorSpace() const override { return *fColorSpace; }
  TmEngine::sSampleRow BeginRow(int pY) override;
  void EndRow(int pY) override;

 private:
  sPixelArray fFrom;
  sPixelArray fTo;
  std::unique_ptr<TmEngine::cColorSpace> fColorSpace;
  int fStart;
  bool fDithers;
  std::vector<std::uint16_t> fRow;  ///< Aligned for all samples. Empty when rows are written in place.
  std::vector<std::uint16_t> fAlpha;
};

}  // namespace Python
