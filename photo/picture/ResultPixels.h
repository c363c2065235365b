#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "engine/color/cColorSpace.h"
#include "engine/image/PixelRows.h"
#include "engine/image/cBitmapLDR.h"

namespace Photo {

/// The samples of a result as files take them: red, green, blue, in rows without gaps.
class cResultPixels {
 public:
  /// pBitDepth: 8, or up to 16 for samples of 16 bits. Not cleared. Throws std::bad_alloc.
  cResultPixels(int pWidth, int pHeight, int pBitDepth);
  /// The pixels of an image, whose samples run the other way.
  explicit cResultPixels(const TmEngine::cBitmapLDR& pImage);

  int GetWidth() const { return fWidth; }
  int GetHeight() const { return fHeight; }
  int GetBitDepth() const { return fBitDepth; }  ///< 8 or 16.
  std::size_t GetRowBytes() const { return static_cast<std::size_t>(fWidth) * 3 * (fBitDepth == 8 ? 1 : 2); }
  std::size_t GetBytes() const { return GetRowBytes() * static_cast<std::size_t>(fHeight); }
  unsigned char* GetRow(int pY) { return fBlock.get() + GetRowBytes() * static_cast<std::size_t>(pY); }

 private:
  struct sFree {
    void operator()(unsigned char* pBlock) const { std::free(pBlock); }
  };

  int fWidth;
  int fHeight;
  int fBitDepth;
  std::unique_ptr<unsigned char, sFree> fBlock;
};

/// Pixels of a result that lost all to black, or a sample to white.
struct sClippedPixels {
  std::int64_t fBlack = 0;
  std::int64_t fWhite = 0;
};

/// Takes the renderer's rows, and counts what was clipped while they are at hand. The result of a panorama
/// that was rolled to the left, so that column pStart came first, is rolled back. The pixels stay the
/// caller's. pDithers, for pixels of 8 bits: rows are rendered at 16 and dithered.
class cResultSink : public TmEngine::cRowSink {
 public:
  cResultSink(cResultPixels& pPixels, TmEngine::eColorSpaceID pColorSpace, int pStart, bool pDithers = false);

  int GetWidth() const override { return fPixels.GetWidth(); }
  int GetHeight() const override { return fPixels.GetHeight(); }
  int GetBitDepth() const override { return fDithers ? 16 : fPixels.GetBitDepth(); }
  const TmEngine::cColorSpace& GetColorSpace() const override { return *fColorSpace; }
  TmEngine::sSampleRow BeginRow(int pY) override;
  void EndRow(int pY) override;

  const sClippedPixels& GetClipped() const { return fClipped; }

 private:
  cResultPixels& fPixels;
  std::unique_ptr<TmEngine::cColorSpace> fColorSpace;
  int fStart;
  bool fDithers;
  std::vector<unsigned char> fRow;  ///< A row as rendered, where it is rolled or dithered.
  sClippedPixels fClipped;
};

}  // namespace Photo
