#pragma once

#include <cstdint>

namespace TmEngine {

/// Memory of tiled images, and a checked copy.
class cMemUtils {
 public:
  static constexpr std::int64_t kMaxTileBytes = 10485760;

  /// Every image's count of pixels a row and of rows: the next multiple of 4, in 64 bits.
  static std::int64_t RoundUpTo4(int pCount) { return (std::int64_t{pCount} + 3) & ~std::int64_t{3}; }
  /// Cuts an image into bands of whole rows, each a malloc block of at most 10 MiB, not cleared. Width and
  /// height are rounded up to multiples of 4. Returns the array of blocks (owned by the caller), or null when
  /// memory is short; sets pStride (bytes a row), pTileCount and pTileHeight (rows a band, the last may have
  /// fewer) on success. Throws cArgumentException (sizes), cInvalidOperationException (a row over 10 MiB).
  static void** TiledBitmapAlloc(int pWidth, int pHeight, int pPixelByteSize, int& pStride, int& pTileCount,
                                 int& pTileHeight);
  /// Frees the blocks and the array; reports null blocks afterwards (cInvalidOperationException).
  static void TiledBitmapFree(void** pTiles, int pTileCount, int pTileHeight);
  /// Copies after proving that the destination lies inside [pBlockStart, pBlockStart + pBlockLength).
  static void SafeMemCopy(void* pDst, const void* pSrc, unsigned int pByteCount, void* pBlockStart,
                          unsigned int pBlockLength);
};

}  // namespace TmEngine
