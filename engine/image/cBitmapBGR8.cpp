#include "engine/image/cBitmapBGR8.h"

#include <cstdlib>
#include <cstring>
#include <memory>

#include "engine/base/LogLine.h"
#include "engine/color/cTransferLUT.h"
#include "engine/image/BitmapChecks.h"
#include "engine/image/BitmapRows.h"
#include "engine/image/cImageUtils.h"

namespace TmEngine {
namespace {

constexpr char kSourceFile[] = ".\\cBitmapBGR8.cpp";
constexpr int kPixelBytes = 3;

}  // namespace

unsigned char* cBitmapBGR8::AllocBitmapData(int pWidth, int pHeight, int& pStride) {
  static constexpr char kSignature[] =
      "unsigned char *__cdecl TmEngine::cBitmapBGR8::AllocBitmapData(int,int,int &)";
  return static_cast<unsigned char*>(AllocRows(pWidth, pHeight, kPixelBytes, pStride,
                                               "Out of memory while allocating bitmap array.", TM_HERE));
}

void cBitmapBGR8::FreeBitmapData(unsigned char* pBGR8) {
  static constexpr char kSignature[] = "void __cdecl TmEngine::cBitmapBGR8::FreeBitmapData(unsigned char *)";
  LogLine("Freeing via FreeBitmapData\n");
  TM_CHECK(pBGR8 != nullptr, cArgumentNullException, "Argument 'pBGR8' cannot be null.");
  std::free(pBGR8);
}

cBitmapBGR8::cBitmapBGR8(int pWidth, int pHeight, eColorSpaceID pID) : cBitmapLDR(pWidth, pHeight) {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cBitmapBGR8::cBitmapBGR8(int,int,enum TmEngine::eColorSpaceID)";
  CheckPositive(pWidth, "pWidth", TM_HERE);
  CheckPositive(pHeight, "pHeight", TM_HERE);
  tBlock block(AllocBitmapData(fWidth, fHeight, fStride));
  fColorSpace = cColorSpace::FromID(pID);
  fBGR8 = block.release();
}

cBitmapBGR8::cBitmapBGR8(int pWidth, int pHeight, cColorSpace* pReferentColorSpace)
    : cBitmapLDR(pWidth, pHeight) {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cBitmapBGR8::cBitmapBGR8(int,int,class TmEngine::cColorSpace *)";
  CheckPositive(pWidth, "pWidth", TM_HERE);
  CheckPositive(pHeight, "pHeight", TM_HERE);
  CheckNotNull(pReferentColorSpace, "pReferentColorSpace", TM_HERE);
  tBlock block(AllocBitmapData(fWidth, fHeight, fStride));
  fColorSpace = pReferentColorSpace->Clone();
  fBGR8 = block.release();
}

cBitmapBGR8::cBitmapBGR8(int pFromWidth, int pFromHeight, int pFromStride, unsigned char* pFromBGR8,
                         eColorSpaceID pID)
    : cBitmapLDR(pFromWidth, pFromHeight) {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cBitmapBGR8::cBitmapBGR8(int,int,int,unsigned char *,enum TmEngine::eColorSpaceID)";
  CheckPositive(pFromWidth, "pFromWidth", TM_HERE);
  CheckPositive(pFromHeight, "pFromWidth", TM_HERE);  // the width's text for the height too: hosts know it
  CheckStride(pFromStride, "pFromStride", std::int64_t{3} * pFromWidth, "3*pFromWidth", TM_HERE);
  CheckNotNull(pFromBGR8, "pFromBGR8", TM_HERE);
  tBlock block(AllocBitmapData(fWidth, fHeight, fStride));
  fColorSpace = cColorSpace::FromID(pID);
  fBGR8 = block.get();
  CopyFromBGR8(pFromWidth, pFromHeight, pFromStride, pFromBGR8);
  block.release();
}

cBitmapBGR8::~cBitmapBGR8() {
  if (fBGR8 != nullptr) FreeBitmapData(fBGR8);
}

int cBitmapBGR8::GetBitDepth() const {
  return 8;
}

unsigned char* cBitmapBGR8::GetBitmapData() {
  return fBGR8;
}

unsigned char* cBitmapBGR8::TakeBitmapData() {
  unsigned char* const block = fBGR8;
  fBGR8 = nullptr;
  fWidth = fHeight = fStride = 0;  // the pixels belong to the caller now
  return block;
}

void cBitmapBGR8::CopyFromBGR8(int pFromWidth, int pFromHeight, int pFromStride, unsigned char* pFromBGR8) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapBGR8::CopyFromBGR8(int,int,int,unsigned char *)";
  static constexpr sCopySource kSource = {"pFromBGR8", kPixelBytes, "3*this->fWidth"};
  CheckCopySource(*this, pFromWidth, pFromHeight, pFromStride, pFromBGR8, kSource, TM_HERE);
  const std::size_t rowBytes = static_cast<std::size_t>(fWidth) * kPixelBytes;
  CopyRows(fBGR8, fStride, pFromBGR8, pFromStride, rowBytes, fHeight);
}

void cBitmapBGR8::CopyToBGR8(unsigned char* pDstBGR8, int pDstWidth, int pDstHeight, int pDstStride) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapBGR8::CopyToBGR8(unsigned char *,int,int,int)";
  CheckCopyToBGR8(*this, pDstBGR8, pDstWidth, pDstHeight, pDstStride, TM_HERE);
  const sRows<unsigned char> to = {pDstBGR8, pDstStride, pDstWidth, pDstHeight};
  ForEachRow(RowsOf(*this), to, [](const unsigned char* pFrom, unsigned char* pTo, int pWidth) {
    std::memmove(pTo, pFrom, static_cast<std::size_t>(pWidth) * kPixelBytes);
  });
}

void cBitmapBGR8::ToBGR32Linear(cBitmapXYZ32* pToBGR32) {
  cImageUtils::BGR8ToBGR32Linear(this, pToBGR32);
}

void cBitmapBGR8::ToXYZ32(cBitmapXYZ32* pToXYZ32) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapBGR8::ToXYZ32(class TmEngine::cBitmapXYZ32 *)";
  CheckPartner(pToXYZ32, "pToXYZ32", *this, TM_HERE);
  const auto table = std::make_unique<cTransferLUT_I8F32>(fColorSpace->GetToLinear());
  ToXYZ32(pToXYZ32, table.get(), fColorSpace->GetRGBToXYZ());
}

void cBitmapBGR8::ToXYZ32(cBitmapXYZ32* pToXYZ32, cTransferLUT_I8F32* pCustomTransferLUT, cMatrix33 pMatrix) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapBGR8::ToXYZ32(class TmEngine::cBitmapXYZ32 *,"
      "class TmEngine::cTransferLUT_I8F32 *,class TmEngine::cMatrix33)";
  CheckPartner(pToXYZ32, "pToXYZ32", *this, TM_HERE);
  CheckNotNull(pCustomTransferLUT, "pCustomTransferLUT", TM_HERE);
  cImageUtils::BGR8ToFloat3(this, pToXYZ32, pCustomTransferLUT, pMatrix);
}

void cBitmapBGR8::FromXYZ32(cBitmapXYZ32* pFromXYZ32) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapBGR8::FromXYZ32(class TmEngine::cBitmapXYZ32 *)";
  CheckPartner(pFromXYZ32, "pFromXYZ32", *this, TM_HERE);
  const auto table = std::make_unique<cTransferLUT_F32I8>(fColorSpace->GetFromLinear());
  cImageUtils::Float3ToBGR8(pFromXYZ32, this, table.get(), fColorSpace->GetXYZToRGB());
}

void cBitmapBGR8::FromXYZ32(cBitmapXYZ32* pFromXYZ32, cTransferLUT_F32I8* pCustomTransferLUT,
                            cMatrix33 pMatrix) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapBGR8::FromXYZ32(class TmEngine::cBitmapXYZ32 *,"
      "class TmEngine::cTransferLUT_F32I8 *,class TmEngine::cMatrix33)";
  CheckPartner(pFromXYZ32, "pFromXYZ32", *this, TM_HERE);
  CheckNotNull(pCustomTransferLUT, "pCustomTransferLUT", TM_HERE);
  cImageUtils::Float3ToBGR8(pFromXYZ32, this, pCustomTransferLUT, pMatrix);
}

}  // namespace TmEngine
