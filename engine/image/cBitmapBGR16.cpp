#include "engine/image/cBitmapBGR16.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

#include "engine/color/cTransferLUT.h"
#include "engine/image/BitmapChecks.h"
#include "engine/image/BitmapRows.h"
#include "engine/image/cBitmapBGR8.h"
#include "engine/image/cImageUtils.h"

namespace TmEngine {
namespace {

constexpr char kSourceFile[] = ".\\cBitmapBGR16.cpp";
constexpr int kPixelBytes = 6;

}  // namespace

unsigned short* cBitmapBGR16::AllocBitmapData(int pWidth, int pHeight, int& pStride) {
  static constexpr char kSignature[] =
      "unsigned short *__cdecl TmEngine::cBitmapBGR16::AllocBitmapData(int,int,int &)";
  return static_cast<unsigned short*>(AllocRows(pWidth, pHeight, kPixelBytes, pStride,
                                                "Out of memory while allocating bitmap array.", TM_HERE));
}

void cBitmapBGR16::FreeBitmapData(unsigned short* pBGR16) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapBGR16::FreeBitmapData(unsigned short *)";
  TM_CHECK(pBGR16 != nullptr, cArgumentNullException, "Argument 'pBGR16' cannot be null.");
  std::free(pBGR16);
}

cBitmapBGR16* cBitmapBGR16::FromBGR16Data(int pFromWidth, int pFromHeight, int pFromStride,
                                          unsigned char* pFromBGR16, eColorSpaceID pID) {
  static constexpr char kSignature[] =
      "class TmEngine::cBitmapBGR16 *__cdecl TmEngine::cBitmapBGR16::FromBGR16Data("
      "int,int,int,unsigned char *,enum TmEngine::eColorSpaceID)";
  CheckPositive(pFromWidth, "pFromWidth", TM_HERE);
  CheckPositive(pFromHeight, "pFromWidth", TM_HERE);  // the width's text for the height too: hosts know it
  // The bound is half of what the text says; CopyFromBGR16 has the true one.
  CheckStride(pFromStride, "pFromStride", std::int64_t{3} * pFromWidth, "2*3*pFromWidth", TM_HERE);
  CheckNotNull(pFromBGR16, "pFromBGR16", TM_HERE);
  auto bitmap = std::make_unique<cBitmapBGR16>(pFromWidth, pFromHeight, pID);
  bitmap->CopyFromBGR16(pFromWidth, pFromHeight, pFromStride, pFromBGR16);
  return bitmap.release();
}

cBitmapBGR16::cBitmapBGR16(int pWidth, int pHeight, eColorSpaceID pID) : cBitmapLDR(pWidth, pHeight) {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cBitmapBGR16::cBitmapBGR16(int,int,enum TmEngine::eColorSpaceID)";
  CheckPositive(pWidth, "pWidth", TM_HERE);
  CheckPositive(pHeight, "pHeight", TM_HERE);
  tBlock block(AllocBitmapData(fWidth, fHeight, fStride));
  fColorSpace = cColorSpace::FromID(pID);
  fBGR16 = block.release();
}

cBitmapBGR16::cBitmapBGR16(int pWidth, int pHeight, cColorSpace* pReferentColorSpace)
    : cBitmapLDR(pWidth, pHeight) {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cBitmapBGR16::cBitmapBGR16(int,int,class TmEngine::cColorSpace *)";
  CheckPositive(pWidth, "pWidth", TM_HERE);
  CheckPositive(pHeight, "pHeight", TM_HERE);
  CheckNotNull(pReferentColorSpace, "pReferentColorSpace", TM_HERE);
  tBlock block(AllocBitmapData(fWidth, fHeight, fStride));
  fColorSpace = pReferentColorSpace->Clone();
  fBGR16 = block.release();
}

cBitmapBGR16::~cBitmapBGR16() {
  if (fBGR16 != nullptr) FreeBitmapData(fBGR16);
}

int cBitmapBGR16::GetStride() const {
  return fStride;
}

int cBitmapBGR16::GetBitDepth() const {
  return 16;
}

unsigned char* cBitmapBGR16::GetBitmapData() {
  return reinterpret_cast<unsigned char*>(fBGR16);
}

unsigned short* cBitmapBGR16::GetBGR16Data() {
  return fBGR16;
}

void cBitmapBGR16::CopyFromBGR16(int pFromWidth, int pFromHeight, int pFromStride,
                                 unsigned char* pFromBGR16) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapBGR16::CopyFromBGR16(int,int,int,unsigned char *)";
  // The bound is twice what the text says: hosts know the text.
  static constexpr sCopySource kSource = {"pFromBGR16", kPixelBytes, "3*this->fWidth"};
  CheckCopySource(*this, pFromWidth, pFromHeight, pFromStride, pFromBGR16, kSource, TM_HERE);
  const std::size_t rowBytes = static_cast<std::size_t>(fWidth) * kPixelBytes;
  CopyRows(fBGR16, fStride, pFromBGR16, pFromStride, rowBytes, fHeight);
}

void cBitmapBGR16::CopyFromLittleEndianRGB16(int pFromWidth, int pFromHeight, int pFromStride,
                                             unsigned short* pFromLERGB16) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapBGR16::CopyFromLittleEndianRGB16(int,int,int,unsigned short *)";
  static constexpr sCopySource kSource = {"pFromLERGB16", kPixelBytes, "2*3*this->fWidth"};
  CheckCopySource(*this, pFromWidth, pFromHeight, pFromStride, pFromLERGB16, kSource, TM_HERE);
  const sRows<const unsigned short> from = {pFromLERGB16, pFromStride / 2, fWidth, fHeight};
  ForEachRow(from, RowsOf(*this), [](const unsigned short* pFrom, unsigned short* pTo, int pWidth) {
    std::memmove(pTo, pFrom, static_cast<std::size_t>(pWidth) * kPixelBytes);
    for (int x = 0; x < pWidth; ++x, pTo += 3) std::swap(pTo[0], pTo[2]);
  });
}

void cBitmapBGR16::FromBGR8(cBitmapBGR8* pFromBGR8) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapBGR16::FromBGR8(class TmEngine::cBitmapBGR8 *)";
  CheckPartner(pFromBGR8, "pFromBGR8", *this, TM_HERE);
  cImageUtils::Convert(pFromBGR8, this);
}

void cBitmapBGR16::ToBGR8(cBitmapBGR8* pToBGR8) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapBGR16::ToBGR8(class TmEngine::cBitmapBGR8 *)";
  CheckPartner(pToBGR8, "pToBGR8", *this, TM_HERE);
  cImageUtils::Convert(this, pToBGR8);
}

void cBitmapBGR16::ToBGR32Linear(cBitmapXYZ32* pToBGR32) {
  cImageUtils::BGR16ToBGR32Linear(this, pToBGR32);
}

void cBitmapBGR16::ToXYZ32(cBitmapXYZ32* pToXYZ32) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapBGR16::ToXYZ32(class TmEngine::cBitmapXYZ32 *)";
  CheckPartner(pToXYZ32, "pToXYZ32", *this, TM_HERE);
  const auto table = std::make_unique<cTransferLUT_I16F32>(fColorSpace->GetToLinear());
  cImageUtils::BGR16ToFloat3(this, pToXYZ32, table.get(), fColorSpace->GetRGBToXYZ());
}

void cBitmapBGR16::FromXYZ32(cBitmapXYZ32* pFromXYZ32) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapBGR16::FromXYZ32(class TmEngine::cBitmapXYZ32 *)";
  CheckPartner(pFromXYZ32, "pFromXYZ32", *this, TM_HERE);
  const auto table = std::make_unique<cTransferLUT_F32I16>(fColorSpace->GetFromLinear());
  cImageUtils::Float3ToBGR16(pFromXYZ32, this, table.get(), fColorSpace->GetXYZToRGB());
}

void cBitmapBGR16::FromXYZ32(cBitmapXYZ32* pFromXYZ32, cTransferLUT_F32I16* pCustomTransferLUT,
                             cMatrix33 pMatrix) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapBGR16::FromXYZ32(class TmEngine::cBitmapXYZ32 *,"
      "class TmEngine::cTransferLUT_F32I16 *,class TmEngine::cMatrix33)";
  CheckPartner(pFromXYZ32, "pFromXYZ32", *this, TM_HERE);
  CheckNotNull(pCustomTransferLUT, "pCustomTransferLUT", TM_HERE);
  cImageUtils::Float3ToBGR16(pFromXYZ32, this, pCustomTransferLUT, pMatrix);
}

}  // namespace TmEngine
