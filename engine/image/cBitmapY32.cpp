#include "engine/image/cBitmapY32.h"

#include <cstdlib>

#include "engine/image/BitmapChecks.h"

namespace TmEngine {
namespace {

constexpr char kSourceFile[] = ".\\cBitmapY32.cpp";

}  // namespace

float* cBitmapY32::AllocBitmapData(int pWidth, int pHeight, int& pStride) {
  static constexpr char kSignature[] = "float *__cdecl TmEngine::cBitmapY32::AllocBitmapData(int,int,int &)";
  return static_cast<float*>(
      AllocRows(pWidth, pHeight, sizeof(float), pStride, "Cannot alloc bitmap array.", TM_HERE));
}

void cBitmapY32::FreeBitmapData(float* pY32) {
  static constexpr char kSignature[] = "void __cdecl TmEngine::cBitmapY32::FreeBitmapData(float *)";
  TM_CHECK(pY32 != nullptr, cArgumentNullException, "Argument 'pY32' cannot be null.");
  std::free(pY32);
}

cBitmapY32::cBitmapY32(int pWidth, int pHeight) : cBitmap(pWidth, pHeight) {
  static constexpr char kSignature[] = "__cdecl TmEngine::cBitmapY32::cBitmapY32(int,int)";
  CheckPositive(pWidth, "pWidth", TM_HERE);
  CheckPositive(pHeight, "pHeight", TM_HERE);
  fY32 = AllocBitmapData(fWidth, fHeight, fStride);
}

cBitmapY32::~cBitmapY32() {
  if (fY32 != nullptr) FreeBitmapData(fY32);
}

}  // namespace TmEngine
