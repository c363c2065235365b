#include "engine/base/cMemUtils.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "engine/base/LargeBlock.h"
#include "engine/base/TmCheck.h"

namespace TmEngine {
namespace {

constexpr char kSourceFile[] = ".\\cMemUtils.cpp";

/// Frees every tile and the array; returns whether a tile was null.
bool FreeTiles(void** pTiles, int pTileCount) {
  bool sawNull = false;
  for (int i = 0; i < pTileCount; ++i) {
    if (pTiles[i] == nullptr) sawNull = true;
    std::free(pTiles[i]);
    pTiles[i] = nullptr;
  }
  std::free(pTiles);
  return sawNull;
}

/// The array with all its tiles, or null and nothing allocated. The last tile holds what rows remain.
void** AllocTiles(std::int64_t pRows, std::int64_t pStride, int pTileCount, std::int64_t pTileHeight) {
  void** const tiles = static_cast<void**>(std::calloc(static_cast<std::size_t>(pTileCount), sizeof(void*)));
  if (tiles == nullptr) return nullptr;
  for (int i = 0; i < pTileCount; ++i) {
    const std::int64_t rows = std::min(pTileHeight, pRows - i * pTileHeight);
    tiles[i] = AllocLargeBlock(static_cast<std::size_t>(rows * pStride));
    if (tiles[i] == nullptr) {
      FreeTiles(tiles, i);
      return nullptr;
    }
  }
  return tiles;
}

}  // namespace

void** cMemUtils::TiledBitmapAlloc(int pWidth, int pHeight, int pPixelByteSize, int& pStride, int& pTileCount,
                                   int& pTileHeight) {
  static constexpr char kSignature[] =
      "void **__cdecl TmEngine::cMemUtils::TiledBitmapAlloc(int,int,int,int &,int &,int &)";
  TM_CHECK(pWidth > 0, cArgumentException, "Argument 'pWidth' cannot be less or equal to 0.");
  TM_CHECK(pHeight > 0, cArgumentException, "Argument 'pHeight' cannot be less or equal to 0.");
  TM_CHECK(pPixelByteSize > 0, cArgumentException, "Argument 'pPixelByteSize' cannot be less or equal to 0.");
  const std::int64_t stride = RoundUpTo4(pWidth) * pPixelByteSize;
  TM_CHECK(stride <= kMaxTileBytes, cInvalidOperationException, "Scanline width exceeds max tile size.");

  const std::int64_t rows = RoundUpTo4(pHeight);
  const std::int64_t tileHeight = kMaxTileBytes / stride;
  const std::int64_t tileCount = (rows + tileHeight - 1) / tileHeight;
  if (tileCount > INT_MAX) return nullptr;
  void** const tiles = AllocTiles(rows, stride, static_cast<int>(tileCount), tileHeight);
  if (tiles == nullptr) return nullptr;
  pStride = static_cast<int>(stride);
  pTileCount = static_cast<int>(tileCount);
  pTileHeight = static_cast<int>(tileHeight);
  return tiles;
}

void cMemUtils::TiledBitmapFree(void** pTiles, int pTileCount, int pTileHeight) {
  static constexpr char kSignature[] = "void __cdecl TmEngine::cMemUtils::TiledBitmapFree(void **,int,int)";
  TM_CHECK(pTiles != nullptr, cArgumentException, "Argument 'pTiles' cannot be null.");
  TM_CHECK(pTileCount > 0, cArgumentException, "Argument 'pTileCount' cannot be less or equal to 0.");
  TM_CHECK(pTileHeight > 0, cArgumentException, "Argument 'pTileHeight' cannot be less or equal to 0.");
  const bool sawNull = FreeTiles(pTiles, pTileCount);
  TM_CHECK(!sawNull, cInvalidOperationException, "Tiles array contains one or several null tiles.");
}

void cMemUtils::SafeMemCopy(void* pDst, const void* pSrc, unsigned int pByteCount, void* pBlockStart,
                            unsigned int pBlockLength) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cMemUtils::SafeMemCopy(void *,const void *,unsigned int,void *,unsigned int)";
  TM_CHECK(pBlockStart != nullptr, cArgumentNullException, "Argument 'pBlockStart' cannot be null.");
  TM_CHECK(pSrc != nullptr, cArgumentNullException, "Argument 'pSrc' cannot be null.");
  TM_CHECK(pByteCount > 0, cArgumentException, "Argument 'pByteCount' must be greater than zero.");
  TM_CHECK(pBlockLength > 0, cArgumentException, "Argument 'pBlockLength' must be greater than zero.");
  const auto start = reinterpret_cast<std::uintptr_t>(pBlockStart);
  const auto destination = reinterpret_cast<std::uintptr_t>(pDst);
  TM_CHECK(destination >= start, cArgumentException, "Argument 'pDst' cannot be less than 'pBlockStart'.");
  // Differences: the sums of the texts could wrap at the end of the address space.
  const std::uintptr_t offset = destination - start;
  TM_CHECK(offset < pBlockLength, cArgumentException,
           "Argument 'pDst' cannot be greater than or equal to 'pBlockStart + pBlockLength'.");
  TM_CHECK(pByteCount <= pBlockLength - offset, cArgumentException, "Cannot copy outside of memory block.");
  std::memmove(pDst, pSrc, pByteCount);
}

}  // namespace TmEngine
