#include "engine/image/cBitmapXYZ32T.h"

#include <cstring>

#include "engine/base/cMemUtils.h"
#include "engine/image/BitmapChecks.h"
#include "engine/image/cBitmapXYZ32.h"

namespace TmEngine {
namespace {

constexpr char kSourceFile[] = ".\\cBitmapXYZ32T.cpp";
constexpr int kPixelBytes = 12;

}  // namespace

cBitmapXYZ32T::cBitmapXYZ32T(int pWidth, int pHeight) : cBitmap(pWidth, pHeight) {
  static constexpr char kSignature[] = "__cdecl TmEngine::cBitmapXYZ32T::cBitmapXYZ32T(int,int)";
  CheckPositive(pWidth, "pWidth", TM_HERE);
  CheckPositive(pHeight, "pHeight", TM_HERE);
  AllocTiles(TM_HERE);
}

// By way of the empty image, so that the destructor frees the tiles if the copy throws.
cBitmapXYZ32T::cBitmapXYZ32T(const cBitmapXYZ32* pFrom) : cBitmapXYZ32T() {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cBitmapXYZ32T::cBitmapXYZ32T(const class TmEngine::cBitmapXYZ32 *)";
  CheckNotNull(pFrom, "pFrom", TM_HERE);
  fWidth = pFrom->GetWidth();
  fHeight = pFrom->GetHeight();
  AllocTiles(TM_HERE);
  CopyFromXYZ32(fWidth, fHeight, pFrom->GetStride(), pFrom->GetBitmapData());
}

cBitmapXYZ32T::~cBitmapXYZ32T() {
  // Never throws: an allocation gives all tiles or none.
  if (fTiles != nullptr) cMemUtils::TiledBitmapFree(fTiles, fTileCount, fTileHeight);
  fTiles = nullptr;
}

void cBitmapXYZ32T::AllocTiles(const sThrowPlace& pPlace) {
  fTiles = cMemUtils::TiledBitmapAlloc(fWidth, fHeight, kPixelBytes, fStride, fTileCount, fTileHeight);
  TM_CHECK_AT(pPlace, fTiles != nullptr, cOutOfMemoryException, "Cannot alloc bitmap tiles.");
}

void cBitmapXYZ32T::CopyFromXYZ32(int pFromWidth, int pFromHeight, int pFromStride, const float* pFromXYZ32) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapXYZ32T::CopyFromXYZ32(int,int,int,const float *)";
  static constexpr sCopySource kSource = {"pFromXYZ32", kPixelBytes, "12*this->fWidth"};
  CheckCopySource(*this, pFromWidth, pFromHeight, pFromStride, pFromXYZ32, kSource, TM_HERE);
  const std::ptrdiff_t fromStride = pFromStride / 4;  // whole floats
  for (int y = 0; y < fHeight; ++y) {
    std::memmove(GetRow(y), pFromXYZ32 + fromStride * y, static_cast<std::size_t>(fWidth) * kPixelBytes);
  }
}

}  // namespace TmEngine
