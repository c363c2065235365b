#include "engine/image/cBitmapY8.h"

#include <cstdlib>
#include <memory>

#include "engine/image/BitmapChecks.h"
#include "engine/image/BitmapRows.h"
#include "engine/image/cBitmapLDR.h"

namespace TmEngine {
namespace {

constexpr char kSourceFile[] = ".\\cBitmapY8.cpp";

/// The checks of both factories. The least stride is that of 8-bit rows for 16-bit rows too.
template <class tSample>
void CheckSource(const sRows<tSample>& pSource, const char* pName, int pSrcStride,
                 const sThrowPlace& pPlace) {
  CheckNotNull(pSource.fFirst, pName, pPlace);
  CheckPositive(pSource.fWidth, "pSrcWidth", pPlace);
  CheckPositive(pSource.fHeight, "pSrcHeight", pPlace);
  CheckStride(pSrcStride, "pSrcStride", std::int64_t{3} * pSource.fWidth, "3*pSrcWidth", pPlace);
}

/// A new image of the source's luma. The weights are 0.114, 0.587 and 0.299 in 16 bits and sum to 65535, so
/// that 8-bit white gives 254; a sum of 16-bit samples just fits.
template <int kShift, class tSample>
cBitmapY8* MakeLuma(const sRows<tSample>& pSource) {
  auto luma = std::make_unique<cBitmapY8>(pSource.fWidth, pSource.fHeight);
  ForEachRow(pSource, RowsOf(*luma), [](const tSample* pFrom, unsigned char* pTo, int pWidth) {
    for (int x = 0; x < pWidth; ++x, pFrom += 3) {
      pTo[x] =
          static_cast<unsigned char>((7471u * pFrom[0] + 38469u * pFrom[1] + 19595u * pFrom[2]) >> kShift);
    }
  });
  return luma.release();
}

}  // namespace

unsigned char* cBitmapY8::AllocBitmapData(int pWidth, int pHeight, int& pStride) {
  static constexpr char kSignature[] =
      "unsigned char *__cdecl TmEngine::cBitmapY8::AllocBitmapData(int,int,int &)";
  return static_cast<unsigned char*>(
      AllocRows(pWidth, pHeight, 1, pStride, "Out of memory while allocating bitmap array.", TM_HERE));
}

void cBitmapY8::FreeBitmapData(unsigned char* pY8) {
  static constexpr char kSignature[] = "void __cdecl TmEngine::cBitmapY8::FreeBitmapData(unsigned char *)";
  TM_CHECK(pY8 != nullptr, cArgumentNullException, "Argument 'pY8' cannot be null.");
  std::free(pY8);
}

cBitmapY8* cBitmapY8::FromBGR8(unsigned char* pSrcBGR8, int pSrcWidth, int pSrcHeight, int pSrcStride) {
  static constexpr char kSignature[] =
      "class TmEngine::cBitmapY8 *__cdecl TmEngine::cBitmapY8::FromBGR8(unsigned char *,int,int,int)";
  const sRows<unsigned char> source = {pSrcBGR8, pSrcStride, pSrcWidth, pSrcHeight};
  CheckSource(source, "pSrcBGR8", pSrcStride, TM_HERE);
  return MakeLuma<16>(source);
}

cBitmapY8* cBitmapY8::FromBGR16(unsigned short* pSrcBGR16, int pSrcWidth, int pSrcHeight, int pSrcStride) {
  static constexpr char kSignature[] =
      "class TmEngine::cBitmapY8 *__cdecl TmEngine::cBitmapY8::FromBGR16(unsigned short *,int,int,int)";
  const sRows<unsigned short> source = {pSrcBGR16, pSrcStride / 2, pSrcWidth, pSrcHeight};
  CheckSource(source, "pSrcBGR16", pSrcStride, TM_HERE);
  return MakeLuma<24>(source);
}

cBitmapY8* cBitmapY8::FromBitmapLDR(cBitmapLDR* pSrcLDR) {
  static constexpr char kSignature[] =
      "class TmEngine::cBitmapY8 *__cdecl TmEngine::cBitmapY8::FromBitmapLDR(class TmEngine::cBitmapLDR *)";
  CheckNotNull(pSrcLDR, "pSrcLDR", TM_HERE);
  const int depth = pSrcLDR->GetBitDepth();
  if (depth != 8 && depth != 16) return nullptr;
  unsigned char* const data = pSrcLDR->GetBitmapData();
  const int width = pSrcLDR->GetWidth();
  const int height = pSrcLDR->GetHeight();
  if (depth == 8) return FromBGR8(data, width, height, pSrcLDR->GetStride());
  return FromBGR16(reinterpret_cast<unsigned short*>(data), width, height, pSrcLDR->GetStride());
}

cBitmapY8::cBitmapY8(int pWidth, int pHeight) : cBitmap(pWidth, pHeight) {
  static constexpr char kSignature[] = "__cdecl TmEngine::cBitmapY8::cBitmapY8(int,int)";
  CheckPositive(pWidth, "pWidth", TM_HERE);
  CheckPositive(pHeight, "pHeight", TM_HERE);
  fY8 = AllocBitmapData(fWidth, fHeight, fStride);
}

cBitmapY8::~cBitmapY8() {
  if (fY8 != nullptr) FreeBitmapData(fY8);
}

void cBitmapY8::CopyToBGR8(unsigned char* pDstBGR8, int pDstWidth, int pDstHeight, int pDstStride) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapY8::CopyToBGR8(unsigned char *,int,int,int)";
  CheckCopyToBGR8(*this, pDstBGR8, pDstWidth, pDstHeight, pDstStride, TM_HERE);
  const sRows<unsigned char> to = {pDstBGR8, pDstStride, pDstWidth, pDstHeight};
  ForEachRow(RowsOf(*this), to, [](const unsigned char* pFrom, unsigned char* pTo, int pWidth) {
    for (int x = 0; x < pWidth; ++x, pTo += 3) pTo[0] = pTo[1] = pTo[2] = pFrom[x];
  });
}

}  // namespace TmEngine
