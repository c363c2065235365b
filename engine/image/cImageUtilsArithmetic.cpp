#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>

#include "engine/image/BitmapChecks.h"
#include "engine/image/BitmapRows.h"
#include "engine/image/cImageUtils.h"

/// The operations of cImageUtils that copy, fill, calculate and compare.

namespace TmEngine {
namespace {

constexpr char kSourceFile[] = ".\\cImageUtilsArithmetic.cpp";

/// A rectangle's position in two images.
struct sRectangle {
  int fSrcX, fSrcY, fDstX, fDstY, fWidth, fHeight;
};

/// The corners of a rectangle of an image; pSide says which one in the texts.
void CheckCorners(const cBitmap& pImage, int pX, int pY, const sRectangle& pRectangle, const char* pSide,
                  const sThrowPlace& pPlace) {
  const auto check = [&](bool pInside, const char* pCorner) {
    if (pInside) return;
    const std::string text = std::string(pCorner) + " corner of " + pSide + " rectangle is out of range.";
    Throw_cArgumentException(text.c_str(), pPlace);
  };
  check(pX >= 0 && pY >= 0 && pX < pImage.GetWidth() && pY < pImage.GetHeight(), "Top/Left");
  const std::int64_t right = std::int64_t{pX} + pRectangle.fWidth - 1;
  const std::int64_t bottom = std::int64_t{pY} + pRectangle.fHeight - 1;
  check(right < pImage.GetWidth() && bottom < pImage.GetHeight(), "Bottom/Right");
}

template <class tImage>
void CheckCopy(const tImage* pSrc, const char* pSrcName, const tImage* pDst, const char* pDstName,
               const sRectangle& pRectangle, const sThrowPlace& pPlace) {
  CheckNotNull(pSrc, pSrcName, pPlace);
  CheckNotNull(pDst, pDstName, pPlace);
  CheckPositive(pRectangle.fWidth, "pWidth", pPlace);
  CheckPositive(pRectangle.fHeight, "pWidth", pPlace);  // the width's text for the height too: hosts know it
  CheckCorners(*pSrc, pRectangle.fSrcX, pRectangle.fSrcY, pRectangle, "source", pPlace);
  CheckCorners(*pDst, pRectangle.fDstX, pRectangle.fDstY, pRectangle, "destination", pPlace);
}

/// Copies the pSamples of each pixel. Sample by sample, so that overlapping rectangles copy forward.
template <class tImage>
void CopyRectangle(const tImage& pSrc, tImage& pDst, const sRectangle& pRectangle, int pSamples) {
  const auto from = RowsOf(pSrc);
  const auto to = RowsOf(pDst);
  const std::ptrdiff_t count = std::ptrdiff_t{pSamples} * pRectangle.fWidth;
  for (int r = 0; r < pRectangle.fHeight; ++r) {
    const auto* source = from.Row(pRectangle.fSrcY + r) + std::ptrdiff_t{pSamples} * pRectangle.fSrcX;
    auto* destination = to.Row(pRectangle.fDstY + r) + std::ptrdiff_t{pSamples} * pRectangle.fDstX;
    for (std::ptrdiff_t i = 0; i < count; ++i) destination[i] = source[i];
  }
}

/// Three samples of every pixel, in storage order. Rows are copied from the first one: a memory copy of a
/// row need not read what it writes over.
template <class tImage, class tSample>
void FillPixels(tImage& pImage, tSample p0, tSample p1, tSample p2) {
  const auto rows = RowsOf(pImage);
  tSample* const first = rows.Row(0);
  const std::ptrdiff_t samples = std::ptrdiff_t{3} * rows.fWidth;
  for (std::ptrdiff_t i = 0; i < samples; i += 3) {
    first[i] = p0;
    first[i + 1] = p1;
    first[i + 2] = p2;
  }
  for (int y = 1; y < rows.fHeight; ++y) {
    std::memcpy(rows.Row(y), first, static_cast<std::size_t>(samples) * sizeof(tSample));
  }
}

/// pTo = pRule(pFrom, pTo) for every sample.
template <class tRule>
void Combine(const cBitmapXYZ32& pFrom, cBitmapXYZ32& pTo, const tRule& pRule) {
  ForEachRow(RowsOf(pFrom), RowsOf(pTo), [&pRule](const float* pFromRow, float* pToRow, int pWidth) {
    for (std::ptrdiff_t i = 0; i < std::ptrdiff_t{3} * pWidth; ++i) pToRow[i] = pRule(pFromRow[i], pToRow[i]);
  });
}

template <class tImage>
void CheckComparison(const tImage* pSrc1, const tImage* pSrc2, const sThrowPlace& pPlace) {
  CheckNotNull(pSrc1, "pSrc1", pPlace);
  CheckNotNull(pSrc2, "pSrc2", pPlace);
  CheckSameSize(*pSrc1, "pSrc1", *pSrc2, "pSrc2", pPlace);
}

/// |pA - pB| in the samples' own type, so that vectors hold as many as possible, and without a minimum, which
/// not every processor has for vectors.
template <class tSample>
tSample Distance(tSample pA, tSample pB) {
  const tSample larger = std::max(pA, pB);
  return static_cast<tSample>(larger - pA + (larger - pB));
}

double Distance(float pA, float pB) {
  return std::fabs(static_cast<double>(pA - pB));
}

/// The sum of the distances of each channel.
struct sChannelSums {
  double fD[3] = {0.0, 0.0, 0.0};
};

/// Adds a row of whole numbers, whose order does not matter: kLanes sums side by side, for the samples of 16
/// pixels, over blocks that are short enough not to overflow.
template <class tSample>
void AddDistances(const tSample* p1, const tSample* p2, int pWidth, sChannelSums& pSums) {
  constexpr int kLanes = 48;
  constexpr int kChunks = 256;  // kChunks * 255 is the largest number of 16 bits
  using tSum = std::conditional_t<sizeof(tSample) == 1, unsigned short, unsigned>;
  const std::ptrdiff_t samples = std::ptrdiff_t{3} * pWidth;
  std::uint64_t sums[3] = {};
  std::ptrdiff_t i = 0;
  while (samples - i >= kLanes) {
    tSum lanes[kLanes] = {};
    for (int chunk = 0; chunk < kChunks && samples - i >= kLanes; ++chunk, i += kLanes) {
      for (int lane = 0; lane < kLanes; ++lane) {
        lanes[lane] = static_cast<tSum>(lanes[lane] + Distance(p1[i + lane], p2[i + lane]));
      }
    }
    for (int lane = 0; lane < kLanes; ++lane) sums[lane % 3] += lanes[lane];
  }
  for (; i < samples; ++i) sums[i % 3] += Distance(p1[i], p2[i]);
  for (int c = 0; c < 3; ++c) pSums.fD[c] += static_cast<double>(sums[c]);
}

/// Adds a row of floats one after the other, as their order decides the last bits.
void AddDistances(const float* p1, const float* p2, int pWidth, sChannelSums& pSums) {
  double sum0 = pSums.fD[0], sum1 = pSums.fD[1], sum2 = pSums.fD[2];
  for (int x = 0; x < pWidth; ++x, p1 += 3, p2 += 3) {
    PrefetchAhead(p1);
    PrefetchAhead(p2);
    sum0 += Distance(p1[0], p2[0]);
    sum1 += Distance(p1[1], p2[1]);
    sum2 += Distance(p1[2], p2[2]);
  }
  pSums.fD[0] = sum0;
  pSums.fD[1] = sum1;
  pSums.fD[2] = sum2;
}

template <class tImage>
sChannelSums SumDistances(const tImage* pSrc1, const tImage* pSrc2, const sThrowPlace& pPlace) {
  CheckComparison(pSrc1, pSrc2, pPlace);
  sChannelSums sums;
  ForEachRow(RowsOf(*pSrc1), RowsOf(*pSrc2),
             [&sums](const auto* p1, const auto* p2, int pWidth) { AddDistances(p1, p2, pWidth, sums); });
  return sums;
}

template <class tSample>
tSample LargestOfRow(const tSample* p1, const tSample* p2, int pWidth) {
  tSample largest = 0;
  for (std::ptrdiff_t i = 0; i < std::ptrdiff_t{3} * pWidth; ++i) {
    largest = std::max(largest, Distance(p1[i], p2[i]));
  }
  return largest;
}

template <class tImage>
int LargestDistance(const tImage* pSrc1, const tImage* pSrc2, const sThrowPlace& pPlace) {
  CheckComparison(pSrc1, pSrc2, pPlace);
  int largest = 0;
  ForEachRow(RowsOf(*pSrc1), RowsOf(*pSrc2), [&largest](const auto* p1, const auto* p2, int pWidth) {
    largest = std::max(largest, int{LargestOfRow(p1, p2, pWidth)});
  });
  return largest;
}

}  // namespace

void cImageUtils::Copy(const cBitmapBGR8* pSrcBGR, cBitmapBGR8* pDstBGR, int pSrcX, int pSrcY, int pDstX,
                       int pDstY, int pWidth, int pHeight) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Copy(const class TmEngine::cBitmapBGR8 *,class "
      "TmEngine::cBitmapBGR8 *,"
      "int,int,int,int,int,int)";
  const sRectangle rectangle = {pSrcX, pSrcY, pDstX, pDstY, pWidth, pHeight};
  CheckCopy<cBitmapBGR8>(pSrcBGR, "pSrcBGR", pDstBGR, "pDstBGR", rectangle, TM_HERE);
  CopyRectangle(*pSrcBGR, *pDstBGR, rectangle, 3);
}

void cImageUtils::Copy(const cBitmapBGR16* pSrcBGR, cBitmapBGR16* pDstBGR, int pSrcX, int pSrcY, int pDstX,
                       int pDstY, int pWidth, int pHeight) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Copy(const class TmEngine::cBitmapBGR16 *,class "
      "TmEngine::cBitmapBGR16 *,"
      "int,int,int,int,int,int)";
  const sRectangle rectangle = {pSrcX, pSrcY, pDstX, pDstY, pWidth, pHeight};
  CheckCopy<cBitmapBGR16>(pSrcBGR, "pSrcBGR", pDstBGR, "pDstBGR", rectangle, TM_HERE);
  CopyRectangle(*pSrcBGR, *pDstBGR, rectangle, 3);
}

void cImageUtils::Copy(const cBitmapY8* pSrcY8, cBitmapY8* pDstY8, int pSrcX, int pSrcY, int pDstX, int pDstY,
                       int pWidth, int pHeight) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Copy(const class TmEngine::cBitmapY8 *,class TmEngine::cBitmapY8 "
      "*,"
      "int,int,int,int,int,int)";
  const sRectangle rectangle = {pSrcX, pSrcY, pDstX, pDstY, pWidth, pHeight};
  CheckCopy<cBitmapY8>(pSrcY8, "pSrcY8", pDstY8, "pDstY8", rectangle, TM_HERE);
  CopyRectangle(*pSrcY8, *pDstY8, rectangle, 1);
}

void cImageUtils::Copy(const cBitmapLDR* pSrcBGR, cBitmapLDR* pDstBGR, int pSrcX, int pSrcY, int pDstX,
                       int pDstY, int pWidth, int pHeight) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Copy(const class TmEngine::cBitmapLDR *,class "
      "TmEngine::cBitmapLDR *,"
      "int,int,int,int,int,int)";
  CheckNotNull(pSrcBGR, "pSrcBGR", TM_HERE);
  CheckNotNull(pDstBGR, "pDstBGR", TM_HERE);
  TM_CHECK(pSrcBGR->GetBitDepth() == pDstBGR->GetBitDepth(), cArgumentException,
           "Argument pSrcBGR and pDstBGR must have the same bit depth.");
  if (pSrcBGR->GetBitDepth() == 8) {
    Copy(dynamic_cast<const cBitmapBGR8*>(pSrcBGR), dynamic_cast<cBitmapBGR8*>(pDstBGR), pSrcX, pSrcY, pDstX,
         pDstY, pWidth, pHeight);
  } else if (pSrcBGR->GetBitDepth() == 16) {
    Copy(dynamic_cast<const cBitmapBGR16*>(pSrcBGR), dynamic_cast<cBitmapBGR16*>(pDstBGR), pSrcX, pSrcY,
         pDstX, pDstY, pWidth, pHeight);
  }
}

void cImageUtils::Fill(cBitmapBGR8* pBGR, unsigned char pRed, unsigned char pGreen, unsigned char pBlue) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Fill(class TmEngine::cBitmapBGR8 *,unsigned char,unsigned "
      "char,unsigned char)";
  CheckNotNull(pBGR, "pBGR", TM_HERE);
  FillPixels(*pBGR, pBlue, pGreen, pRed);
}

void cImageUtils::Fill(cBitmapBGR16* pBGR, unsigned short pRed, unsigned short pGreen, unsigned short pBlue) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Fill(class TmEngine::cBitmapBGR16 *,unsigned short,unsigned "
      "short,unsigned short)";
  CheckNotNull(pBGR, "pBGR", TM_HERE);
  FillPixels(*pBGR, pBlue, pGreen, pRed);
}

void cImageUtils::Fill(cBitmapXYZ32* pXYZ32, float p0, float p1, float p2) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Fill(class TmEngine::cBitmapXYZ32 *,float,float,float)";
  CheckNotNull(pXYZ32, "pXYZ32", TM_HERE);
  FillPixels(*pXYZ32, p0, p1, p2);
}

void cImageUtils::Sub(cBitmapXYZ32* pSrc1, const cBitmapXYZ32* pSrc2) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Sub(class TmEngine::cBitmapXYZ32 *,const class "
      "TmEngine::cBitmapXYZ32 *)";
  CheckComparison<cBitmapXYZ32>(pSrc1, pSrc2, TM_HERE);
  Combine(*pSrc2, *pSrc1, [](float p2, float p1) { return p1 - p2; });
}

void cImageUtils::Mul(cBitmapXYZ32* pXYZ32, const float pFactor) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Mul(class TmEngine::cBitmapXYZ32 *,const float)";
  CheckNotNull(pXYZ32, "pXYZ32", TM_HERE);
  Combine(*pXYZ32, *pXYZ32, [pFactor](float pSample, float) { return pSample * pFactor; });
}

void cImageUtils::Mul(const cBitmapXYZ32* pSrc, cBitmapXYZ32* pDst, const float pFactor) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Mul(const class TmEngine::cBitmapXYZ32 *,class "
      "TmEngine::cBitmapXYZ32 *,"
      "const float)";
  CheckNotNull(pSrc, "pSrc", TM_HERE);
  CheckNotNull(pDst, "pDst", TM_HERE);
  CheckSameSize(*pSrc, "pSrc", *pDst, "pDst", TM_HERE);
  Combine(*pSrc, *pDst, [pFactor](float pSample, float) { return pSample * pFactor; });
}

void cImageUtils::Mul(const cBitmapXYZ32* pSrc1, const cBitmapXYZ32* pSrc2, cBitmapXYZ32* pDst) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Mul(const class TmEngine::cBitmapXYZ32 *,"
      "const class TmEngine::cBitmapXYZ32 *,class TmEngine::cBitmapXYZ32 *)";
  CheckNotNull(pSrc1, "pSrc1", TM_HERE);
  CheckNotNull(pSrc2, "pSrc2", TM_HERE);
  CheckNotNull(pDst, "pDst", TM_HERE);
  CheckSameSize(*pSrc1, "pSrc1", *pDst, "pDst", TM_HERE);
  CheckSameSize(*pSrc2, "pSrc2", *pDst, "pDst", TM_HERE);
  const auto first = RowsOf(*pSrc1);
  const auto second = RowsOf(*pSrc2);
  const auto to = RowsOf(*pDst);
  for (int y = 0; y < to.fHeight; ++y) {
    for (std::ptrdiff_t i = 0; i < std::ptrdiff_t{3} * to.fWidth; ++i) {
      to.Row(y)[i] = first.Row(y)[i] * second.Row(y)[i];
    }
  }
}

void cImageUtils::Diff(const cBitmapBGR8* pSrc1, const cBitmapBGR8* pSrc2, double& pD0, double& pD1,
                       double& pD2) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Diff(const class TmEngine::cBitmapBGR8 *,const class "
      "TmEngine::cBitmapBGR8 *,"
      "double &,double &,double &)";
  const sChannelSums sums = SumDistances(pSrc1, pSrc2, TM_HERE);
  pD0 = sums.fD[0];
  pD1 = sums.fD[1];
  pD2 = sums.fD[2];
}

double cImageUtils::Diff(const cBitmapBGR8* pSrc1, const cBitmapBGR8* pSrc2) {
  static constexpr char kSignature[] =
      "double __cdecl TmEngine::cImageUtils::Diff(const class TmEngine::cBitmapBGR8 *,const class "
      "TmEngine::cBitmapBGR8 *)";
  const sChannelSums sums = SumDistances(pSrc1, pSrc2, TM_HERE);
  return sums.fD[0] + sums.fD[1] + sums.fD[2];
}

void cImageUtils::Diff(const cBitmapBGR16* pSrc1, const cBitmapBGR16* pSrc2, double& pD0, double& pD1,
                       double& pD2) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Diff(const class TmEngine::cBitmapBGR16 *,const class "
      "TmEngine::cBitmapBGR16 *,"
      "double &,double &,double &)";
  const sChannelSums sums = SumDistances(pSrc1, pSrc2, TM_HERE);
  pD0 = sums.fD[0];
  pD1 = sums.fD[1];
  pD2 = sums.fD[2];
}

double cImageUtils::Diff(const cBitmapBGR16* pSrc1, const cBitmapBGR16* pSrc2) {
  static constexpr char kSignature[] =
      "double __cdecl TmEngine::cImageUtils::Diff(const class TmEngine::cBitmapBGR16 *,const class "
      "TmEngine::cBitmapBGR16 *)";
  const sChannelSums sums = SumDistances(pSrc1, pSrc2, TM_HERE);
  return sums.fD[0] + sums.fD[1] + sums.fD[2];
}

void cImageUtils::Diff(const cBitmapXYZ32* pSrc1, const cBitmapXYZ32* pSrc2, double& pD0, double& pD1,
                       double& pD2) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cImageUtils::Diff(const class TmEngine::cBitmapXYZ32 *,const class "
      "TmEngine::cBitmapXYZ32 *,"
      "double &,double &,double &)";
  const sChannelSums sums = SumDistances(pSrc1, pSrc2, TM_HERE);
  pD0 = sums.fD[0];
  pD1 = sums.fD[1];
  pD2 = sums.fD[2];
}

double cImageUtils::Diff(const cBitmapXYZ32* pSrc1, const cBitmapXYZ32* pSrc2) {
  static constexpr char kSignature[] =
      "double __cdecl TmEngine::cImageUtils::Diff(const class TmEngine::cBitmapXYZ32 *,const class "
      "TmEngine::cBitmapXYZ32 *)";
  const sChannelSums sums = SumDistances(pSrc1, pSrc2, TM_HERE);
  return sums.fD[0] + sums.fD[1] + sums.fD[2];
}

int cImageUtils::MaxDiff(const cBitmapBGR8* pSrc1, const cBitmapBGR8* pSrc2) {
  static constexpr char kSignature[] =
      "int __cdecl TmEngine::cImageUtils::MaxDiff(const class TmEngine::cBitmapBGR8 *,const class "
      "TmEngine::cBitmapBGR8 *)";
  return LargestDistance(pSrc1, pSrc2, TM_HERE);
}

int cImageUtils::MaxDiff(const cBitmapBGR16* pSrc1, const cBitmapBGR16* pSrc2) {
  static constexpr char kSignature[] =
      "int __cdecl TmEngine::cImageUtils::MaxDiff(const class TmEngine::cBitmapBGR16 *,const class "
      "TmEngine::cBitmapBGR16 *)";
  return LargestDistance(pSrc1, pSrc2, TM_HERE);
}

}  // namespace TmEngine
