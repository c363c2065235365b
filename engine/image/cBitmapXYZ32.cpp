#include "engine/image/cBitmapXYZ32.h"

#include <cstdlib>
#include <memory>

#include "engine/image/BitmapChecks.h"
#include "engine/image/BitmapRows.h"
#include "engine/math/Quantise.h"

namespace TmEngine {
namespace {

constexpr char kSourceFile[] = ".\\cBitmapXYZ32.cpp";
constexpr int kPixelBytes = 12;

}  // namespace

float* cBitmapXYZ32::AllocBitmapData(int pWidth, int pHeight, int& pStride) {
  static constexpr char kSignature[] =
      "float *__cdecl TmEngine::cBitmapXYZ32::AllocBitmapData(int,int,int &)";
  return static_cast<float*>(
      AllocRows(pWidth, pHeight, kPixelBytes, pStride, "Cannot alloc bitmap array.", TM_HERE));
}

void cBitmapXYZ32::FreeBitmapData(float* pXYZ32) {
  static constexpr char kSignature[] = "void __cdecl TmEngine::cBitmapXYZ32::FreeBitmapData(float *)";
  TM_CHECK(pXYZ32 != nullptr, cArgumentNullException, "Argument 'pXYZ32' cannot be null.");
  std::free(pXYZ32);
}

cBitmapXYZ32::cBitmapXYZ32(int pWidth, int pHeight) : cBitmap(pWidth, pHeight) {
  static constexpr char kSignature[] = "__cdecl TmEngine::cBitmapXYZ32::cBitmapXYZ32(int,int)";
  CheckPositive(pWidth, "pWidth", TM_HERE);
  CheckPositive(pHeight, "pHeight", TM_HERE);
  fXYZ32 = AllocBitmapData(fWidth, fHeight, fStride);
}

cBitmapXYZ32::cBitmapXYZ32(const cBitmapXYZ32* pFrom) {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cBitmapXYZ32::cBitmapXYZ32(const class TmEngine::cBitmapXYZ32 *)";
  CheckNotNull(pFrom, "pFrom", TM_HERE);
  fWidth = pFrom->fWidth;
  fHeight = pFrom->fHeight;
  std::unique_ptr<float, sFreeBlock> block(AllocBitmapData(fWidth, fHeight, fStride));
  fXYZ32 = block.get();
  CopyFromXYZ32(pFrom->fWidth, pFrom->fHeight, pFrom->fStride, pFrom->fXYZ32);
  block.release();
}

cBitmapXYZ32::~cBitmapXYZ32() {
  if (fXYZ32 != nullptr) FreeBitmapData(fXYZ32);
}

void cBitmapXYZ32::CopyFromXYZ32(int pFromWidth, int pFromHeight, int pFromStride, const float* pFromXYZ32) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapXYZ32::CopyFromXYZ32(int,int,int,const float *)";
  static constexpr sCopySource kSource = {"pFromXYZ32", kPixelBytes, "12*this->fWidth"};
  CheckCopySource(*this, pFromWidth, pFromHeight, pFromStride, pFromXYZ32, kSource, TM_HERE);
  const std::size_t rowBytes = static_cast<std::size_t>(fWidth) * kPixelBytes;
  CopyRows(fXYZ32, fStride, pFromXYZ32, pFromStride, rowBytes, fHeight);
}

void cBitmapXYZ32::BGRFloatToBGR8Data(int pToWidth, int pToHeight, int pToStride,
                                      unsigned char* pToBGR8) const {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapXYZ32::BGRFloatToBGR8Data(int,int,int,unsigned char *) const";
  CheckEqual(pToWidth, "pToWidth", fWidth, " this->fWidth", TM_HERE);  // two blanks: hosts know the text
  CheckEqual(pToHeight, "pToHeight", fHeight, " this->fHeight", TM_HERE);
  CheckNotNull(pToBGR8, "pToBGR8", TM_HERE);
  const sRows<unsigned char> to = {pToBGR8, pToStride, pToWidth, pToHeight};
  ForEachRow(RowsOf(*this), to, [](const float* pFrom, unsigned char* pTo, int pWidth) {
    const std::ptrdiff_t samples = std::ptrdiff_t{3} * pWidth;
    for (std::ptrdiff_t i = 0; i < samples; ++i) {
      pTo[i] = static_cast<unsigned char>(ClampToIndex(pFrom[i] * 255.0f, 255));
    }
  });
}

}  // namespace TmEngine
