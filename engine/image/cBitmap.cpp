#include "engine/image/cBitmap.h"

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "engine/base/LargeBlock.h"
#include "engine/base/cMemUtils.h"
#include "engine/image/BitmapChecks.h"

namespace TmEngine {
namespace {

constexpr char kSourceFile[] = ".\\cBitmap.cpp";

/// pRows * pStride bytes from malloc, or null.
void* AllocBlock(std::int64_t pRows, std::int64_t pStride) {
  if (pStride > INT_MAX) return nullptr;
  if (static_cast<std::uint64_t>(pRows * pStride) > SIZE_MAX) return nullptr;
  return AllocLargeBlock(static_cast<std::size_t>(pRows * pStride));
}

}  // namespace

cBitmap::~cBitmap() = default;

int cBitmap::GetStride() const {
  return fStride;
}

void cBitmap::SwapWidthHeight() {
  static constexpr char kSignature[] = "void __cdecl TmEngine::cBitmap::SwapWidthHeight(void)";
  Throw_cInvalidOperationException("SwapWidthHeight() is not implemented for this class.", TM_HERE);
}

void* cBitmap::AllocRows(int pWidth, int pHeight, int pPixelBytes, int& pStride) {
  const std::int64_t stride = cMemUtils::RoundUpTo4(pWidth) * pPixelBytes;
  void* const block = AllocBlock(cMemUtils::RoundUpTo4(pHeight), stride);
  if (block != nullptr) pStride = static_cast<int>(stride);
  return block;
}

void* cBitmap::AllocRows(int pWidth, int pHeight, int pPixelBytes, int& pStride, const char* pFailureText,
                         const sThrowPlace& pPlace) {
  CheckPositive(pWidth, "pWidth", pPlace);
  CheckPositive(pHeight, "pHeight", pPlace);
  void* const block = AllocRows(pWidth, pHeight, pPixelBytes, pStride);
  TM_CHECK_AT(pPlace, block != nullptr, cOutOfMemoryException, pFailureText);
  return block;
}

void cBitmap::CopyRows(void* pTo, int pToStride, const void* pFrom, int pFromStride, std::size_t pRowBytes,
                       int pRows) {
  if (pToStride == pFromStride && pRows > 0) {
    std::memmove(pTo, pFrom, static_cast<std::size_t>(pRows) * static_cast<std::size_t>(pFromStride));
    return;
  }
  for (int y = 0; y < pRows; ++y) {
    std::memmove(static_cast<char*>(pTo) + std::ptrdiff_t{pToStride} * y,
                 static_cast<const char*>(pFrom) + std::ptrdiff_t{pFromStride} * y, pRowBytes);
  }
}

}  // namespace TmEngine
