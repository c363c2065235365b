#pragma once

#include <cstddef>
#include <cstdlib>

namespace TmEngine {

struct sThrowPlace;

/// Base of all images. Row y starts y * fStride bytes after the first sample. Sizes are greater than zero
/// once an image is constructed. Images own their pixels and are neither copied nor assigned.
class cBitmap {
 public:
  cBitmap(const cBitmap&) = delete;
  cBitmap& operator=(const cBitmap&) = delete;
  virtual ~cBitmap();
  virtual int GetStride() const;   ///< Bytes from one row to the next.
  virtual void SwapWidthHeight();  ///< Implemented by no class: throws cInvalidOperationException.

  int GetWidth() const { return fWidth; }    ///< Pixels per row.
  int GetHeight() const { return fHeight; }  ///< Rows.

 protected:
  cBitmap() = default;
  cBitmap(int pWidth, int pHeight) : fWidth(pWidth), fHeight(pHeight) {}

  /// The allocation rule of every untiled image: width and height rounded up to multiples of 4 pixels and
  /// rows, not cleared, from malloc. Null when the stride does not fit an int or there is no memory.
  static void* AllocRows(int pWidth, int pHeight, int pPixelBytes, int& pStride);
  /// AllocRows with the checks of every AllocBitmapData, in the name of pPlace: sizes (cArgumentException),
  /// then the block (cOutOfMemoryException with pFailureText).
  static void* AllocRows(int pWidth, int pHeight, int pPixelBytes, int& pStride, const char* pFailureText,
                         const sThrowPlace& pPlace);
  /// One block, padding included, when the strides are equal; otherwise pRowBytes per row. Strides in bytes.
  /// The source may be the destination's own block.
  static void CopyRows(void* pTo, int pToStride, const void* pFrom, int pFromStride, std::size_t pRowBytes,
                       int pRows);

  /// Frees the pixel block of a constructor that fails.
  struct sFreeBlock {
    void operator()(void* pBlock) const { std::free(pBlock); }
  };

  int fWidth = 0;
  int fHeight = 0;
  int fStride = 0;
};

}  // namespace TmEngine
