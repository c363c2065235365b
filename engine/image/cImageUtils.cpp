#include "engine/image/cImageUtils.h"

#include <algorithm>
#include <array>
#include <cfloat>

#include "engine/image/BitmapChecks.h"
#include "engine/image/BitmapRows.h"
#include "engine/image/PixelRows.h"
#include "engine/kernels/Kernels.h"

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

/// Calls pBody(first sample, pixels) for every run of pixels.
template <class tBody>
void ForEachRun(const cBitmapXYZ32& pImage, const tBody& pBody) {
  const auto rows = RowsOf(pImage);
  for (int y = 0; y < rows.fHeight; ++y) {
    for (int start = 0; start < rows.fWidth; start += kRunLength) {
      pBody(rows.Row(y) + std::ptrdiff_t{3} * start, std::min(kRunLength, rows.fWidth - start));
    }
  }
}

/// Widens pSeen to hold one channel of a run. A value counts only if it is smaller or larger than all before
/// it: NaN never does.
void Widen(const float* pRun, int pPixels, int pChannel, sRange& pSeen) {
  float values[kRunLength];
  for (int i = 0; i < pPixels; ++i) values[i] = pRun[3 * i + pChannel];
  Kernels().fWiden(values, pPixels, pSeen);
}

/// pLimit, but the first zero of channels pFirst to pLast for any zero: it counts, and its sign may differ
/// from that of the zero that the kernel came upon.
float WithFirstZero(const cBitmapXYZ32& pImage, int pFirst, int pLast, float pLimit) {
  if (pLimit != 0.0f) return pLimit;
  const auto rows = RowsOf(pImage);
  for (int y = 0; y < rows.fHeight; ++y) {
    const float* pixel = rows.Row(y);
    for (int x = 0; x < rows.fWidth; ++x, pixel += 3) {
      const float* const end = pixel + pLast + 1;
      const float* const zero = std::find(pixel + pFirst, end, 0.0f);
      if (zero != end) return *zero;
    }
  }
  return pLimit;
}

sRange WithFirstZeros(const cBitmapXYZ32& pImage, int pFirst, int pLast, const sRange& pRange) {
  return {WithFirstZero(pImage, pFirst, pLast, pRange.fMin),
          WithFirstZero(pImage, pFirst, pLast, pRange.fMax)};
}

sRange FindRange(const cBitmapXYZ32& pImage, int pChannel) {
  const float first = pImage.GetBitmapData()[pChannel];
  sRange range = {first, first};
  ForEachRun(pImage,
             [&range, pChannel](const float* pRun, int pPixels) { Widen(pRun, pPixels, pChannel, range); });
  return WithFirstZeros(pImage, pChannel, pChannel, range);
}

constexpr sRange kEmpty = {FLT_MAX, -FLT_MAX};

sRange RangeOfAll(const cBitmapXYZ32& pImage) {
  sRange range = kEmpty;
  ForEachRun(pImage,
             [&range](const float* pRun, int pPixels) { Kernels().fWiden(pRun, 3 * pPixels, range); });
  return WithFirstZeros(pImage, 0, 2, range);
}

std::array<sRange, 3> RangesOfChannels(const cBitmapXYZ32& pImage) {
  std::array<sRange, 3> ranges = {kEmpty, kEmpty, kEmpty};
  ForEachRun(pImage, [&ranges](const float* pRun, int pPixels) {
    for (int c = 0; c < 3; ++c) Widen(pRun, pPixels, c, ranges[static_cast<std::size_t>(c)]);
  });
  for (int c = 0; c < 3; ++c) {
    sRange& range = ranges[static_cast<std::size_t>(c)];
    range = WithFirstZeros(pImage, c, c, range);
  }
  return ranges;
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
};

/// Stretches each channel by its own range. The constants are laid out as the samples are, so that whole
/// vectors of samples are worked on.
void StretchPixels(cBitmapXYZ32& pImage, const std::array<sRange, 3>& pRanges) {
  constexpr int kLanes = 48;
  float mins[kLanes], ranges[kLanes];
  for (int lane = 0; lane < kLanes; ++lane) {
    const sStretch stretch(pRanges[static_cast<std::size_t>(lane % 3)]);
    mins[lane] = stretch.fMin;
    ranges[lane] = stretch.fRange;
  }
  const auto rows = RowsOf(pImage);
  const std::ptrdiff_t samples = std::ptrdiff_t{3} * rows.fWidth;
  for (int y = 0; y < rows.fHeight; ++y) {
    float* const row = rows.Row(y);
    for (std::ptrdiff_t start = 0; start < samples; start += kLanes) {
      const int count = static_cast<int>(std::min<std::ptrdiff_t>(kLanes, samples - start));
      for (int i = 0; i < count; ++i) row[start + i] = (row[start + i] - mins[i]) / ranges[i];
    }
  }
}

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
  if (pPerChannel) {
    StretchPixels(*pXYZ32, RangesOfChannels(*pXYZ32));
  } else {
    const sRange range = RangeOfAll(*pXYZ32);
    StretchPixels(*pXYZ32, {range, range, range});
  }
}

void cImageUtils::Mean(const cBitmapXYZ32* pSrc, float& pMean0, float& pMean1, float& pMean2) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Mean(const class TmEngine::cBitmapXYZ32 *,float &,float &,float "
      "&)";
  CheckNotNull(pSrc, "pSrc", TM_HERE);
  double sum0 = 0.0, sum1 = 0.0, sum2 = 0.0;  // three variables: an array would be kept in memory
  ForEachRun(*pSrc, [&](const float* pRun, int pPixels) {
    double run0 = sum0, run1 = sum1, run2 = sum2;
    for (int i = 0; i < pPixels; ++i, pRun += 3) {
      PrefetchAhead(pRun);
      run0 += static_cast<double>(pRun[0]);
      run1 += static_cast<double>(pRun[1]);
      run2 += static_cast<double>(pRun[2]);
    }
    sum0 = run0;
    sum1 = run1;
    sum2 = run2;
  });
  const double pixels = static_cast<double>(std::int64_t{pSrc->GetWidth()} * pSrc->GetHeight());
  pMean0 = static_cast<float>(sum0 / pixels);
  pMean1 = static_cast<float>(sum1 / pixels);
  pMean2 = static_cast<float>(sum2 / pixels);
}

}  // namespace TmEngine
