#include "engine/image/cBitmapU16T.h"

#include <climits>

#include "engine/base/cLargeRegion.h"
#include "engine/base/cMemUtils.h"
#include "engine/image/BitmapChecks.h"

namespace TmEngine {
namespace {

constexpr char kSourceFile[] = ".\\cBitmapU16T.cpp";

}  // namespace

cBitmapU16T::cBitmapU16T(int pWidth, int pHeight, int pPlane, cLargeRegion* pRegion)
    : cBitmap(pWidth, pHeight), fPlane(pPlane) {
  static constexpr char kSignature[] = "__cdecl TmEngine::cBitmapU16T::cBitmapU16T(int,int,int)";
  CheckPositive(pWidth, "pWidth", TM_HERE);
  CheckPositive(pHeight, "pHeight", TM_HERE);
  CheckPositive(pPlane, "pPlane", TM_HERE);
  // Where the product overflows, one pixel is over the tile limit, and INT_MAX is too.
  const int pixelBytes = pPlane > INT_MAX / 2 ? INT_MAX : 2 * pPlane;
  if (pRegion != nullptr && TakeFrom(*pRegion, pixelBytes)) return;
  fTiles = cMemUtils::TiledBitmapAlloc(fWidth, fHeight, pixelBytes, fStride, fTileCount, fTileHeight);
  TM_CHECK(fTiles != nullptr, cOutOfMemoryException, "Cannot alloc bitmap tiles.");
}

cBitmapU16T::~cBitmapU16T() {
  // Never throws: an allocation gives all tiles or none.
  if (fRegionTile == nullptr && fTiles != nullptr)
    cMemUtils::TiledBitmapFree(fTiles, fTileCount, fTileHeight);
  fTiles = nullptr;
}

bool cBitmapU16T::TakeFrom(cLargeRegion& pRegion, std::int64_t pPixelBytes) {
  const std::int64_t stride = cMemUtils::RoundUpTo4(fWidth) * pPixelBytes;
  const std::int64_t rows = cMemUtils::RoundUpTo4(fHeight);
  if (stride > cMemUtils::kMaxTileBytes || rows > INT_MAX) return false;
  fRegionTile = pRegion.Take(static_cast<std::size_t>(stride * rows));
  if (fRegionTile == nullptr) return false;
  fTiles = &fRegionTile;
  fTileCount = 1;
  fTileHeight = static_cast<int>(rows);
  fStride = static_cast<int>(stride);
  return true;
}

}  // namespace TmEngine
