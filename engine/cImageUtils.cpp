#include "engine/cImageUtils.h"

#include <cfloat>

#include "engine/BitmapChecks.h"
#include "engine/BitmapRows.h"

namespace TmEngine {
namespace {

constexpr char kSourceFile[] = ".\\cImageUtils.cpp";

void CheckChannel(int pChannel, const sThrowPlace& pPlace) {
  TM_CHECK_AT(pPlace, pChannel >= 0, cInvalidOperationException, "pChannel cannot be less than zero.");
  TM_CHECK_AT(pPlace, pChannel <= 2, cInvalidOperationException, "pChannel cannot be greater than two.");
}

void CheckChannelOf(const cBitmapXYZ32* pSrcXYZ32, int pChannel, const sThrowPlace& pPlace) {
  CheckNotNull(pSrcXYZ32, "pSrcXYZ32", pPlace);
  CheckChannel(pChannel, pPlace);
}

/// One row of the product. The order of the sum decides its last bits.
float Product(const float* pPixel, float pA, float pB, float pC) {
  return (pPixel[1] * pB + pPixel[0] * pA) + pPixel[2] * pC;
}

/// pTo may be pFrom: a pixel is read whole before it is written.
void TransformRow(const float* pFrom, float* pTo, int pWidth, cMatrix33 pMatrix) {
  for (int x = 0; x < pWidth; ++x, pFrom += 3, pTo += 3) {
    const float first = Product(pFrom, pMatrix[0], pMatrix[1], pMatrix[2]);
    const float second = Product(pFrom, pMatrix[3], pMatrix[4], pMatrix[5]);
    const float third = Product(pFrom, pMatrix[6], pMatrix[7], pMatrix[8]);
    pTo[0] = first;
    pTo[1] = second;
    pTo[2] = third;
  }
}

void Transform(const cBitmapXYZ32& pFrom, cBitmapXYZ32& pTo, const cMatrix33& pMatrix) {
  ForEachRow(RowsOf(pFrom), RowsOf(pTo), [&pMatrix](const float* pFromRow, float* pToRow, int pWidth) {
    TransformRow(pFromRow, pToRow, pWidth, pMatrix);
  });
}

/// Smallest and largest of the values seen. Comparisons are strict: NaN never replaces a value.
struct sRange {
  float fMin;
  float fMax;

  void Add(float pValue) {
    if (pValue < fMin) fMin = pValue;
    if (pValue > fMax) fMax = pValue;
  }
};

sRange FindRange(const cBitmapXYZ32& pImage, int pChannel) {
  const float first = pImage.GetBitmapData()[pChannel];
  sRange range = {first, first};
  ForEachPixel(RowsOf(pImage), [&range, pChannel](const float* pPixel) { range.Add(pPixel[pChannel]); });
  return range;
}

/// Maps a range to [0, 1]; a single value goes to 0.5.
struct sStretch {
  float fMin;
  float fRange;

  explicit sStretch(const sRange& pRange) : fMin(pRange.fMin), fRange(pRange.fMax - pRange.fMin) {
    if (fRange != 0.0f) return;
    fMin -= 0.5f;
    fRange = 1.0f;
  }
  float operator()(float pValue) const { return (pValue - fMin) / fRange; }
};

}  // namespace

void cImageUtils::ColorTransform(const cBitmapXYZ32* pSrcXYZ32, cBitmapXYZ32* pDstXYZ32, cMatrix33 pMatrix) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::ColorTransform(const class TmEngine::cBitmapXYZ32 *,"
      "class TmEngine::cBitmapXYZ32 *,class TmEngine::cMatrix33)";
  CheckNotNull(pSrcXYZ32, "pSrcXYZ32", TM_HERE);
  CheckNotNull(pDstXYZ32, "pDstXYZ32", TM_HERE);
  CheckSameSize(*pSrcXYZ32, "pSrcXYZ32", *pDstXYZ32, "pDstXYZ32", TM_HERE);
  Transform(*pSrcXYZ32, *pDstXYZ32, pMatrix);
}

void cImageUtils::ColorTransform(cBitmapXYZ32* pXYZ32, cMatrix33 pMatrix) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::ColorTransform(class TmEngine::cBitmapXYZ32 *,"
      "class TmEngine::cMatrix33)";
  CheckNotNull(pXYZ32, "pXYZ32", TM_HERE);
  ColorTransform(pXYZ32, pXYZ32, pMatrix);
}

void cImageUtils::TransformInPlace(cBitmapXYZ32* pXYZ32, cMatrix33 pMatrix) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::TransformInPlace(class TmEngine::cBitmapXYZ32 *,"
      "class TmEngine::cMatrix33)";
  CheckNotNull(pXYZ32, "pXYZ32", TM_HERE);
  Transform(*pXYZ32, *pXYZ32, pMatrix);
}

void cImageUtils::ExtractChannel(const cBitmapXYZ32* pSrcXYZ32, float* pDest, int pChannel) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::ExtractChannel(const class TmEngine::cBitmapXYZ32 *,float *,int)";
  CheckNotNull(pSrcXYZ32, "pSrcXYZ32", TM_HERE);
  CheckNotNull(pDest, "pDest", TM_HERE);
  CheckChannel(pChannel, TM_HERE);
  ForEachPixel(RowsOf(*pSrcXYZ32), [&pDest, pChannel](const float* pPixel) { *pDest++ = pPixel[pChannel]; });
}

void cImageUtils::ReplaceChannel(const float* pSrc, cBitmapXYZ32* pDstXYZ32, int pChannel) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::ReplaceChannel(const float *,class TmEngine::cBitmapXYZ32 *,int)";
  CheckNotNull(pDstXYZ32, "pDstXYZ32", TM_HERE);
  CheckNotNull(pSrc, "pSrc", TM_HERE);
  CheckChannel(pChannel, TM_HERE);
  ForEachPixel(RowsOf(*pDstXYZ32), [&pSrc, pChannel](float* pPixel) { pPixel[pChannel] = *pSrc++; });
}

void cImageUtils::ClampLow(cBitmapXYZ32* pSrcXYZ32, int pChannel, float pLimit) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::ClampLow(class TmEngine::cBitmapXYZ32 *,int,float)";
  CheckChannelOf(pSrcXYZ32, pChannel, TM_HERE);
  ForEachPixel(RowsOf(*pSrcXYZ32), [pChannel, pLimit](float* pPixel) {
    if (pLimit > pPixel[pChannel]) pPixel[pChannel] = pLimit;
  });
}

float cImageUtils::GetMin(const cBitmapXYZ32* pSrcXYZ32, int pChannel) {
  static constexpr char kSignature[] =
      "float __cdecl TmEngine::cImageUtils::GetMin(const class TmEngine::cBitmapXYZ32 *,int)";
  CheckChannelOf(pSrcXYZ32, pChannel, TM_HERE);
  return FindRange(*pSrcXYZ32, pChannel).fMin;
}

float cImageUtils::GetMax(const cBitmapXYZ32* pSrcXYZ32, int pChannel) {
  static constexpr char kSignature[] =
      "float __cdecl TmEngine::cImageUtils::GetMax(const class TmEngine::cBitmapXYZ32 *,int)";
  CheckChannelOf(pSrcXYZ32, pChannel, TM_HERE);
  return FindRange(*pSrcXYZ32, pChannel).fMax;
}

void cImageUtils::GetMinMax(const cBitmapXYZ32* pSrcXYZ32, int pChannel, float& pMin, float& pMax) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::GetMinMax(const class TmEngine::cBitmapXYZ32 *,int,float &,float "
      "&)";
  CheckChannelOf(pSrcXYZ32, pChannel, TM_HERE);
  const sRange range = FindRange(*pSrcXYZ32, pChannel);
  pMin = range.fMin;
  pMax = range.fMax;
}

void cImageUtils::Normalize(cBitmapXYZ32* pXYZ32, bool pPerChannel) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Normalize(class TmEngine::cBitmapXYZ32 *,bool)";
  CheckNotNull(pXYZ32, "pXYZ32", TM_HERE);
  const sRange empty = {FLT_MAX, -FLT_MAX};
  sRange ranges[3] = {empty, empty, empty};
  const int group[3] = {0, pPerChannel ? 1 : 0, pPerChannel ? 2 : 0};  // channel to range
  ForEachPixel(RowsOf(*pXYZ32), [&ranges, &group](const float* pPixel) {
    for (int c = 0; c < 3; ++c) ranges[group[c]].Add(pPixel[c]);
  });
  const sStretch stretches[3] = {sStretch(ranges[group[0]]), sStretch(ranges[group[1]]),
                                 sStretch(ranges[group[2]])};
  ForEachPixel(RowsOf(*pXYZ32), [&stretches](float* pPixel) {
    for (int c = 0; c < 3; ++c) pPixel[c] = stretches[c](pPixel[c]);
  });
}

void cImageUtils::Mean(const cBitmapXYZ32* pSrc, float& pMean0, float& pMean1, float& pMean2) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Mean(const class TmEngine::cBitmapXYZ32 *,float &,float &,float "
      "&)";
  CheckNotNull(pSrc, "pSrc", TM_HERE);
  double sums[3] = {0.0, 0.0, 0.0};
  ForEachPixel(RowsOf(*pSrc), [&sums](const float* pPixel) {
    for (int c = 0; c < 3; ++c) sums[c] += static_cast<double>(pPixel[c]);
  });
  const double pixels = static_cast<double>(std::int64_t{pSrc->GetWidth()} * pSrc->GetHeight());
  pMean0 = static_cast<float>(sums[0] / pixels);
  pMean1 = static_cast<float>(sums[1] / pixels);
  pMean2 = static_cast<float>(sums[2] / pixels);
}

}  // namespace TmEngine
