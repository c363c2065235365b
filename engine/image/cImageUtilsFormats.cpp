#include <algorithm>
#include <memory>

#include "engine/color/cTransferLUT.h"
#include "engine/image/BitmapChecks.h"
#include "engine/image/BitmapRows.h"
#include "engine/image/PixelRows.h"
#include "engine/image/cImageUtils.h"
#include "engine/kernels/Kernels.h"

/// The operations of cImageUtils that move pixels between sample formats.

namespace TmEngine {
namespace {

constexpr char kSourceFile[] = ".\\cImageUtilsFormats.cpp";

/// Source and destination not null, then of one size.
void CheckPair(const cBitmap* pFrom, const char* pFromName, const cBitmap* pTo, const char* pToName,
               const sThrowPlace& pPlace) {
  CheckNotNull(pFrom, pFromName, pPlace);
  CheckNotNull(pTo, pToName, pPlace);
  CheckSameSize(*pTo, pToName, *pFrom, pFromName, pPlace);
}

/// Every sample through pRule, order kept.
template <class tFrom, class tTo, class tRule>
void MapSamples(const tFrom& pFrom, tTo& pTo, const tRule& pRule) {
  ForEachRow(RowsOf(pFrom), RowsOf(pTo), [&pRule](const auto* pFromRow, auto* pToRow, int pWidth) {
    const std::ptrdiff_t samples = std::ptrdiff_t{3} * pWidth;
    for (std::ptrdiff_t i = 0; i < samples; ++i) pToRow[i] = pRule(pFromRow[i]);
  });
}

template <class tFrom>
void DecodeSamples(const tFrom& pFrom, cBitmapXYZ32& pTo, const float* pTable) {
  ForEachRow(RowsOf(pFrom), RowsOf(pTo), [pTable](const auto* pCodes, float* pValues, int pWidth) {
    for (int x = 0; x < pWidth; ++x, pCodes += 3, pValues += 3) {
      PrefetchAhead(pValues);
      for (int c = 0; c < 3; ++c) pValues[c] = pTable[pCodes[c]];
    }
  });
}

/// The samples of one run of pixels.
constexpr int kRunSamples = 3 * kRunLength;

/// Calls pBody(source, destination, samples) for every run of two images of one size.
template <class tFrom, class tTo, class tBody>
void ForEachRun(const tFrom& pFrom, tTo& pTo, const tBody& pBody) {
  ForEachRow(RowsOf(pFrom), RowsOf(pTo), [&pBody](const auto* pFromRow, auto* pToRow, int pWidth) {
    const std::ptrdiff_t samples = std::ptrdiff_t{3} * pWidth;
    for (std::ptrdiff_t start = 0; start < samples; start += kRunSamples) {
      const std::ptrdiff_t count = std::min<std::ptrdiff_t>(kRunSamples, samples - start);
      pBody(pFromRow + start, pToRow + start, static_cast<int>(count));
    }
  });
}

/// Every value as pRule(truncate(v * pScale) held in [0, 65535]), order kept; NaN counts as 0.
template <class tTo, class tRule>
void QuantiseSamples(const cBitmapXYZ32& pFrom, tTo& pTo, float pScale, const tRule& pRule) {
  ForEachRun(pFrom, pTo, [&pRule, pScale](const float* pValues, auto* pCodes, int pCount) {
    int indices[kRunSamples];
    Kernels().fBins(pValues, 0.0f, pScale, indices, pCount);
    for (int i = 0; i < pCount; ++i) pCodes[i] = pRule(indices[i]);
  });
}

template <class tTo, class tCode>
void EncodeSamples(const cBitmapXYZ32& pFrom, tTo& pTo, const tCode* pTable) {
  ForEachRun(pFrom, pTo, [pTable](const float* pValues, tCode* pCodes, int pCount) {
    int indices[kRunSamples];
    Kernels().fBins(pValues, 0.0f, 65535.0f, indices, pCount);
    for (int i = 0; i < pCount; i += 3) {
      PrefetchAhead(pValues + i, kRunSamples);
      for (int c = 0; c < 3; ++c) pCodes[i + c] = pTable[indices[i + c]];
    }
  });
}

/// A new image of the source's size, filled by pFill.
template <class tTo, class tFrom, class... tSpace>
tTo* Create(const tFrom* pFrom, void (*pFill)(const tFrom*, tTo*), tSpace... pSpace) {
  auto image = std::make_unique<tTo>(pFrom->GetWidth(), pFrom->GetHeight(), pSpace...);
  pFill(pFrom, image.get());
  return image.release();
}

/// A run of pixels, a plane a channel.
struct sPlanes {
  float f0[kRunLength], f1[kRunLength], f2[kRunLength];
};

/// One row of the product, left to right.
float Product(float p0, float p1, float p2, const cMatrix33& pMatrix, int pRow) {
  return p0 * pMatrix[3 * pRow] + p1 * pMatrix[3 * pRow + 1] + p2 * pMatrix[3 * pRow + 2];
}

template <class tFrom>
void DecodeFloat3(const tFrom& pFrom, cBitmapXYZ32& pTo, const float* pTable, const cMatrix33& pMatrix) {
  ForEachRow(RowsOf(pFrom), RowsOf(pTo), [pTable, pMatrix](const auto* pBGR, float* pTriple, int pWidth) {
    for (int x = 0; x < pWidth; ++x, pBGR += 3, pTriple += 3) {
      PrefetchAhead(pTriple);
      const float blue = pTable[pBGR[0]];
      const float green = pTable[pBGR[1]];
      const float red = pTable[pBGR[2]];
      for (int row = 0; row < 3; ++row) pTriple[row] = Product(red, green, blue, pMatrix, row);
    }
  });
}

/// Row-major pMatrix times each triple, then through pTable, blue first.
template <class tTo, class tCode>
void EncodeFloat3(const cBitmapXYZ32& pFrom, tTo& pTo, const tCode* pTable, const cMatrix33& pMatrix) {
  ForEachRun(pFrom, pTo, [pTable, &pMatrix](const float* pTriples, tCode* pBGR, int pCount) {
    sPlanes planes;
    const int pixels = pCount / 3;
    SplitPixels(pTriples, pixels, planes.f0, planes.f1, planes.f2);
    Kernels().fTransform(pMatrix.Elements(), planes.f0, planes.f1, planes.f2, pixels);
    int red[kRunLength], green[kRunLength], blue[kRunLength];
    Kernels().fBins(planes.f0, 0.0f, 65535.0f, red, pixels);
    Kernels().fBins(planes.f1, 0.0f, 65535.0f, green, pixels);
    Kernels().fBins(planes.f2, 0.0f, 65535.0f, blue, pixels);
    for (int i = 0; i < pixels; ++i) {
      PrefetchAhead(pTriples + 3 * i, kRunSamples);
      pBGR[3 * i] = pTable[blue[i]];
      pBGR[3 * i + 1] = pTable[green[i]];
      pBGR[3 * i + 2] = pTable[red[i]];
    }
  });
}

}  // namespace

void cImageUtils::BGR8ToBGR32(const cBitmapBGR8* pSrcBGR8, cBitmapXYZ32* pDstBGR32) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::BGR8ToBGR32(const class TmEngine::cBitmapBGR8 *,class "
      "TmEngine::cBitmapXYZ32 *)";
  CheckPair(pSrcBGR8, "pSrcBGR8", pDstBGR32, "pDstBGR32", TM_HERE);
  // a division: the reciprocal gives other bits
  MapSamples(*pSrcBGR8, *pDstBGR32,
             [](unsigned char pSample) { return static_cast<float>(pSample) / 255.0f; });
}

void cImageUtils::BGR16ToBGR32(const cBitmapBGR16* pSrcBGR16, cBitmapXYZ32* pDstBGR32) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::BGR16ToBGR32(const class TmEngine::cBitmapBGR16 *,class "
      "TmEngine::cBitmapXYZ32 *)";
  CheckPair(pSrcBGR16, "pSrcBGR16", pDstBGR32, "pDstBGR32", TM_HERE);
  MapSamples(*pSrcBGR16, *pDstBGR32,
             [](unsigned short pSample) { return static_cast<float>(pSample) / 65535.0f; });
}

void cImageUtils::BGR32ToBGR8(const cBitmapXYZ32* pSrcBGR32, cBitmapBGR8* pDstBGR8) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::BGR32ToBGR8(const class TmEngine::cBitmapXYZ32 *,class "
      "TmEngine::cBitmapBGR8 *)";
  CheckPair(pSrcBGR32, "pSrcBGR32", pDstBGR8, "pDstBGR8", TM_HERE);
  QuantiseSamples(*pSrcBGR32, *pDstBGR8, 255.0f,
                  [](int pIndex) { return static_cast<unsigned char>(std::min(pIndex, 255)); });
}

void cImageUtils::BGR32ToBGR16(const cBitmapXYZ32* pSrcBGR32, cBitmapBGR16* pDstBGR16) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::BGR32ToBGR16(const class TmEngine::cBitmapXYZ32 *,class "
      "TmEngine::cBitmapBGR16 *)";
  CheckPair(pSrcBGR32, "pSrcBGR32", pDstBGR16, "pDstBGR16", TM_HERE);
  QuantiseSamples(*pSrcBGR32, *pDstBGR16, 65535.0f,
                  [](int pIndex) { return static_cast<unsigned short>(pIndex); });
}

void cImageUtils::BGR8ToBGR32Linear(const cBitmapBGR8* pSrcBGR8, cBitmapXYZ32* pDstBGR32) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::BGR8ToBGR32Linear(const class TmEngine::cBitmapBGR8 *,"
      "class TmEngine::cBitmapXYZ32 *)";
  CheckPair(pSrcBGR8, "pSrcBGR8", pDstBGR32, "pDstBGR32", TM_HERE);
  const auto table = std::make_unique<cTransferLUT_I8F32>(pSrcBGR8->GetColorSpace()->GetToLinear());
  DecodeSamples(*pSrcBGR8, *pDstBGR32, table->GetTable());
}

void cImageUtils::BGR16ToBGR32Linear(const cBitmapBGR16* pSrcBGR16, cBitmapXYZ32* pDstBGR32) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::BGR16ToBGR32Linear(const class TmEngine::cBitmapBGR16 *,"
      "class TmEngine::cBitmapXYZ32 *)";
  CheckPair(pSrcBGR16, "pSrcBGR16", pDstBGR32, "pDstBGR32", TM_HERE);
  const auto table = std::make_unique<cTransferLUT_I16F32>(pSrcBGR16->GetColorSpace()->GetToLinear());
  DecodeSamples(*pSrcBGR16, *pDstBGR32, table->GetTable());
}

void cImageUtils::BGR32LinearToBGR8(const cBitmapXYZ32* pSrcBGR32, cBitmapBGR8* pDstBGR8) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::BGR32LinearToBGR8(const class TmEngine::cBitmapXYZ32 *,class "
      "TmEngine::cBitmapBGR8 *)";
  CheckPair(pSrcBGR32, "pSrcBGR32", pDstBGR8, "pDstBGR8", TM_HERE);
  const auto table = std::make_unique<cTransferLUT_F32I8>(pDstBGR8->GetColorSpace()->GetFromLinear());
  EncodeSamples(*pSrcBGR32, *pDstBGR8, table->GetTable());
}

void cImageUtils::BGR32LinearToBGR16(const cBitmapXYZ32* pSrcBGR32, cBitmapBGR16* pDstBGR16) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::BGR32LinearToBGR16(const class TmEngine::cBitmapXYZ32 *,class "
      "TmEngine::cBitmapBGR16 *)";
  CheckPair(pSrcBGR32, "pSrcBGR32", pDstBGR16, "pDstBGR16", TM_HERE);
  const auto table = std::make_unique<cTransferLUT_F32I16>(pDstBGR16->GetColorSpace()->GetFromLinear());
  EncodeSamples(*pSrcBGR32, *pDstBGR16, table->GetTable());
}

cBitmapXYZ32* cImageUtils::BGR8ToBGR32(const cBitmapBGR8* pSrcBGR8) {
  static constexpr char kSignature[] =
      "class TmEngine::cBitmapXYZ32 *__cdecl TmEngine::cImageUtils::BGR8ToBGR32(const class "
      "TmEngine::cBitmapBGR8 *)";
  CheckNotNull(pSrcBGR8, "pSrcBGR8", TM_HERE);
  return Create<cBitmapXYZ32>(pSrcBGR8, &cImageUtils::BGR8ToBGR32);
}

cBitmapXYZ32* cImageUtils::BGR16ToBGR32(const cBitmapBGR16* pSrcBGR16) {
  static constexpr char kSignature[] =
      "class TmEngine::cBitmapXYZ32 *__cdecl TmEngine::cImageUtils::BGR16ToBGR32(const class "
      "TmEngine::cBitmapBGR16 *)";
  CheckNotNull(pSrcBGR16, "pSrcBGR16", TM_HERE);
  return Create<cBitmapXYZ32>(pSrcBGR16, &cImageUtils::BGR16ToBGR32);
}

cBitmapXYZ32* cImageUtils::BGR8ToBGR32Linear(const cBitmapBGR8* pSrcBGR8) {
  static constexpr char kSignature[] =
      "class TmEngine::cBitmapXYZ32 *__cdecl TmEngine::cImageUtils::BGR8ToBGR32Linear(const class "
      "TmEngine::cBitmapBGR8 *)";
  CheckNotNull(pSrcBGR8, "pSrcBGR8", TM_HERE);
  return Create<cBitmapXYZ32>(pSrcBGR8, &cImageUtils::BGR8ToBGR32Linear);
}

cBitmapXYZ32* cImageUtils::BGR16ToBGR32Linear(const cBitmapBGR16* pSrcBGR16) {
  static constexpr char kSignature[] =
      "class TmEngine::cBitmapXYZ32 *__cdecl TmEngine::cImageUtils::BGR16ToBGR32Linear(const class "
      "TmEngine::cBitmapBGR16 *)";
  CheckNotNull(pSrcBGR16, "pSrcBGR16", TM_HERE);
  return Create<cBitmapXYZ32>(pSrcBGR16, &cImageUtils::BGR16ToBGR32Linear);
}

cBitmapBGR8* cImageUtils::BGR32ToBGR8(const cBitmapXYZ32* pSrcBGR32, eColorSpaceID pID) {
  static constexpr char kSignature[] =
      "class TmEngine::cBitmapBGR8 *__cdecl TmEngine::cImageUtils::BGR32ToBGR8(const class "
      "TmEngine::cBitmapXYZ32 *,enum TmEngine::eColorSpaceID)";
  CheckNotNull(pSrcBGR32, "pSrcBGR32", TM_HERE);
  return Create<cBitmapBGR8>(pSrcBGR32, &cImageUtils::BGR32ToBGR8, pID);
}

cBitmapBGR16* cImageUtils::BGR32ToBGR16(const cBitmapXYZ32* pSrcBGR32, eColorSpaceID pID) {
  static constexpr char kSignature[] =
      "class TmEngine::cBitmapBGR16 *__cdecl TmEngine::cImageUtils::BGR32ToBGR16(const class "
      "TmEngine::cBitmapXYZ32 *,enum TmEngine::eColorSpaceID)";
  CheckNotNull(pSrcBGR32, "pSrcBGR32", TM_HERE);
  return Create<cBitmapBGR16>(pSrcBGR32, &cImageUtils::BGR32ToBGR16, pID);
}

cBitmapBGR8* cImageUtils::BGR32LinearToBGR8(const cBitmapXYZ32* pSrcBGR32, eColorSpaceID pID) {
  static constexpr char kSignature[] =
      "class TmEngine::cBitmapBGR8 *__cdecl TmEngine::cImageUtils::BGR32LinearToBGR8(const class "
      "TmEngine::cBitmapXYZ32 *,enum TmEngine::eColorSpaceID)";
  CheckNotNull(pSrcBGR32, "pSrcBGR32", TM_HERE);
  return Create<cBitmapBGR8>(pSrcBGR32, &cImageUtils::BGR32LinearToBGR8, pID);
}

cBitmapBGR16* cImageUtils::BGR32LinearToBGR16(const cBitmapXYZ32* pSrcBGR32, eColorSpaceID pID) {
  static constexpr char kSignature[] =
      "class TmEngine::cBitmapBGR16 *__cdecl TmEngine::cImageUtils::BGR32LinearToBGR16(const class "
      "TmEngine::cBitmapXYZ32 *,enum TmEngine::eColorSpaceID)";
  CheckNotNull(pSrcBGR32, "pSrcBGR32", TM_HERE);
  return Create<cBitmapBGR16>(pSrcBGR32, &cImageUtils::BGR32LinearToBGR16, pID);
}

void cImageUtils::BGR8ToFloat3(cBitmapBGR8* pFromBGR8, cBitmapXYZ32* pToXYZ32,
                               cTransferLUT_I8F32* pTransferLUT, cMatrix33 pMatrix) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::BGR8ToFloat3(class TmEngine::cBitmapBGR8 *,"
      "class TmEngine::cBitmapXYZ32 *,class TmEngine::cTransferLUT_I8F32 *,class TmEngine::cMatrix33)";
  CheckPair(pFromBGR8, "pFromBGR8", pToXYZ32, "pToXYZ32", TM_HERE);
  CheckNotNull(pTransferLUT, "pTransferLUT", TM_HERE);
  DecodeFloat3(*pFromBGR8, *pToXYZ32, pTransferLUT->GetTable(), pMatrix);
}

void cImageUtils::BGR16ToFloat3(cBitmapBGR16* pFromBGR16, cBitmapXYZ32* pToXYZ32,
                                cTransferLUT_I16F32* pTransferLUT, cMatrix33 pMatrix) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::BGR16ToFloat3(class TmEngine::cBitmapBGR16 *,"
      "class TmEngine::cBitmapXYZ32 *,class TmEngine::cTransferLUT_I16F32 *,class TmEngine::cMatrix33)";
  CheckPair(pFromBGR16, "pFromBGR16", pToXYZ32, "pToXYZ32", TM_HERE);
  CheckNotNull(pTransferLUT, "pTransferLUT", TM_HERE);
  DecodeFloat3(*pFromBGR16, *pToXYZ32, pTransferLUT->GetTable(), pMatrix);
}

void cImageUtils::Float3ToBGR8(cBitmapXYZ32* pFromXYZ32, cBitmapBGR8* pToBGR8, cTransferLUT_F32I8* pTransfer,
                               cMatrix33 pMatrix) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Float3ToBGR8(class TmEngine::cBitmapXYZ32 *,"
      "class TmEngine::cBitmapBGR8 *,class TmEngine::cTransferLUT_F32I8 *,class TmEngine::cMatrix33)";
  CheckPair(pFromXYZ32, "pFromXYZ32", pToBGR8, "pToBGR8", TM_HERE);
  CheckNotNull(pTransfer, "pTransfer", TM_HERE);
  EncodeFloat3(*pFromXYZ32, *pToBGR8, pTransfer->GetTable(), pMatrix);
}

void cImageUtils::Float3ToBGR16(cBitmapXYZ32* pFromXYZ32, cBitmapBGR16* pToBGR16,
                                cTransferLUT_F32I16* pTransfer, cMatrix33 pMatrix) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Float3ToBGR16(class TmEngine::cBitmapXYZ32 *,"
      "class TmEngine::cBitmapBGR16 *,class TmEngine::cTransferLUT_F32I16 *,class TmEngine::cMatrix33)";
  CheckPair(pFromXYZ32, "pFromXYZ32", pToBGR16, "pToBGR16", TM_HERE);
  CheckNotNull(pTransfer, "pTransfer", TM_HERE);
  EncodeFloat3(*pFromXYZ32, *pToBGR16, pTransfer->GetTable(), pMatrix);
}

void cImageUtils::Convert(cBitmapBGR16* pFromBGR16, cBitmapBGR8* pToBGR8) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Convert(class TmEngine::cBitmapBGR16 *,"
      "class TmEngine::cBitmapBGR8 *)";
  CheckPair(pFromBGR16, "pFromBGR16", pToBGR8, "pToBGR8", TM_HERE);
  // floor(s / 257): the high byte h, or one less where the low byte l is below it, as s = 257 * h + (l - h)
  MapSamples(*pFromBGR16, *pToBGR8, [](unsigned short pSample) {
    return static_cast<unsigned char>((pSample - (pSample >> 8)) >> 8);
  });
}

void cImageUtils::Convert(cBitmapBGR8* pFromBGR8, cBitmapBGR16* pToBGR16) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Convert(class TmEngine::cBitmapBGR8 *,"
      "class TmEngine::cBitmapBGR16 *)";
  CheckPair(pFromBGR8, "pFromBGR8", pToBGR16, "pToBGR16", TM_HERE);
  MapSamples(*pFromBGR8, *pToBGR16,
             [](unsigned char pSample) { return static_cast<unsigned short>(pSample * 257); });
}

}  // namespace TmEngine
