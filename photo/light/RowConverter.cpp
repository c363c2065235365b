#include "photo/light/RowConverter.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "photo/base/FloatBits.h"

namespace Photo {
namespace {

constexpr int kGroup = 3 * 8;  // samples of neighbouring pixels
constexpr std::int32_t kInfinity = 0x7f800000;

/// In the bits of floats, read as integers, larger is larger above 0, infinity is above what is finite, and
/// NaN above all.
std::int32_t Magnitude(float pSample) {
  return BitsOf(pSample) & 0x7fffffff;
}

std::int32_t LargestFinite(const float* pSamples, int pCount) {
  std::int32_t largest = 0;
  for (int i = 0; i < pCount; ++i) {
    const std::int32_t magnitude = Magnitude(pSamples[i]);
    if (magnitude < kInfinity) largest = std::max(largest, magnitude);
  }
  return largest;
}

bool HasInfinity(const float* pRow, int pSamples) {
  return std::any_of(pRow, pRow + pSamples, [](float pV) { return std::isinf(pV) && pV > 0.0f; });
}

float RepairSample(float pSample, float pBound, float pLargest) {
  if (std::isnan(pSample)) return 0.0f;
  if (std::fabs(pSample) <= pBound) return pSample;
  return pSample > 0.0f ? pLargest : 0.0f;
}

/// Sums in the order of the engine's transform of whole pictures: the order decides the last bits.
float Product(const float* pPixel, float pA, float pB, float pC) {
  return (pPixel[1] * pB + pPixel[0] * pA) + pPixel[2] * pC;
}

void Transform(float* pRow, int pWidth, const TmEngine::cMatrix33 pMatrix) {
  for (int x = 0; x < pWidth; ++x, pRow += 3) {
    const float first = Product(pRow, pMatrix[0], pMatrix[1], pMatrix[2]);
    const float second = Product(pRow, pMatrix[3], pMatrix[4], pMatrix[5]);
    const float third = Product(pRow, pMatrix[6], pMatrix[7], pMatrix[8]);
    pRow[0] = first;
    pRow[1] = second;
    pRow[2] = third;
  }
}

/// Whether every product with this matrix of samples that are not negative is above 0 by more than rounding.
bool IsPositive(const TmEngine::cMatrix33& pMatrix) {
  return std::all_of(pMatrix.Elements(), pMatrix.Elements() + 9, [](float pV) { return pV > 1e-4f; });
}

}  // namespace

cRowConverter::cRowConverter(const sLinearLight& pLight) : fLight(pLight), fSurface(GetSurfaceColors()) {
  fIsInside = fLight.fToXYZ && IsPositive(fSurface.fToRGB * *fLight.fToXYZ);
}

bool cRowConverter::sPart::IsValid(float pBound) const {
  return FloatOf(fLargest) <= pBound;
}

bool cRowConverter::Take(float* pRow, int pCount) {
  if (fLight.fIsValid) {
    Convert({pRow, pCount, 0, false}, false);
    return true;
  }
  const sPart part = Scan(pRow, pCount);
  if (fHolds || IsOdd(part)) {
    Wait(part);
    return false;
  }
  FinishPart(part, cLightLevels::kLargestSample, 0.0f);
  return true;
}

std::optional<sRepairs> cRowConverter::Finish() {
  const float bound = fLevels.FindBound();
  if (!fHolds && FloatOf(fLargest) > bound) return std::nullopt;
  const bool isValid = std::all_of(fWaiting.begin(), fWaiting.end(),
                                   [bound](const sPart& pPart) { return pPart.IsValid(bound); });
  const float largest = isValid ? 0.0f : FindLargest(bound);
  for (const sPart& part : fWaiting) FinishPart(part, bound, largest);
  fWaiting.clear();
  return fRepairs;
}

cRowConverter::sPart cRowConverter::Scan(float* pRow, int pCount) {
  sPart part = {pRow, pCount, 0, false};
  std::int32_t signs = 0;
  const int samples = 3 * pCount;
  for (int start = 0; start < samples; start += kGroup) {
    const int count = std::min(kGroup, samples - start);
    std::int32_t largest = 0;
    for (int i = start; i < start + count; ++i) {
      const auto bits = BitsOf(pRow[i]);
      const std::int32_t magnitude = bits & 0x7fffffff;
      largest = magnitude > largest ? magnitude : largest;
      signs |= bits;
    }
    part.fLargest = std::max(part.fLargest, largest);
    fLevels.Add(largest < kInfinity ? largest : LargestFinite(pRow + start, count));
  }
  part.fHasNegative = signs < 0;
  return part;
}

/// Short rows that follow each other wait as one.
void cRowConverter::Wait(const sPart& pPart) {
  constexpr int kLong = 1024;
  const bool follows = !fWaiting.empty() && fWaiting.back().fCount < kLong &&
                       fWaiting.back().fPixels + std::ptrdiff_t{3} * fWaiting.back().fCount == pPart.fPixels;
  if (!follows || pPart.fCount >= kLong) return fWaiting.push_back(pPart);
  sPart& last = fWaiting.back();
  last.fCount += pPart.fCount;
  last.fLargest = std::max(last.fLargest, pPart.fLargest);
  last.fHasNegative = last.fHasNegative || pPart.fHasNegative;
}

/// Whether the picture as a whole decides what becomes of it. Whatever else turns out to be an outlier is
/// found at the end.
bool cRowConverter::IsOdd(const sPart& pPart) {
  const int samples = 3 * pPart.fCount;
  const bool isFinite = pPart.fLargest < kInfinity;
  const std::int32_t largest = isFinite ? pPart.fLargest : LargestFinite(pPart.fPixels, samples);
  const bool isBrightest = largest > fLargest;
  fLargest = std::max(fLargest, largest);
  if (!isFinite && HasInfinity(pPart.fPixels, samples)) return true;
  return isBrightest && FloatOf(largest) > fLevels.FindBound();
}

/// The brightest sample of the picture that is light.
float cRowConverter::FindLargest(float pBound) const {
  float largest = 0.0f;
  for (const sPart& part : fWaiting) {
    for (int i = 0; i < 3 * part.fCount; ++i) {
      const float sample = part.fPixels[i];
      if (sample > largest && sample <= pBound) largest = sample;
    }
  }
  return largest > 0.0f ? largest : 1.0f;
}

void cRowConverter::FinishPart(const sPart& pPart, float pBound, float pLargest) {
  const bool isValid = pPart.IsValid(pBound);
  if (!isValid) Repair(pPart, pBound, pLargest);
  Convert(pPart, pPart.fHasNegative || !isValid);
}

void cRowConverter::Repair(const sPart& pPart, float pBound, float pLargest) {
  float* pixel = pPart.fPixels;
  for (int x = 0; x < pPart.fCount; ++x, pixel += 3) {
    if (std::all_of(pixel, pixel + 3, [=](float pV) { return std::fabs(pV) <= pBound; })) continue;
    const bool isNaN = std::any_of(pixel, pixel + 3, [](float pV) { return std::isnan(pV); });
    const bool isInfinite = std::any_of(pixel, pixel + 3, [](float pV) { return std::isinf(pV); });
    ++(isNaN ? fRepairs.fNaN : isInfinite ? fRepairs.fInfinite : fRepairs.fOutliers);
    for (int i = 0; i < 3; ++i) pixel[i] = RepairSample(pixel[i], pBound, pLargest);
  }
}

void cRowConverter::Convert(const sPart& pPart, bool pHasNegative) {
  if (fLight.fToXYZ) Transform(pPart.fPixels, pPart.fCount, *fLight.fToXYZ);
  if (fLight.fFitsGamut && (pHasNegative || !fIsInside)) FitGamut(pPart);
}

void cRowConverter::FitGamut(const sPart& pPart) {
  float* pixel = pPart.fPixels;
  for (int x = 0; x < pPart.fCount; ++x, pixel += 3) {
    TmEngine::cVector3 rgb = fSurface.fToRGB * TmEngine::cVector3(pixel[0], pixel[1], pixel[2]);
    if (rgb[0] >= 0.0f && rgb[1] >= 0.0f && rgb[2] >= 0.0f) continue;
    ++fRepairs.fNegative;
    for (int i = 0; i < 3; ++i) rgb[i] = std::max(rgb[i], 0.0f);
    const TmEngine::cVector3 xyz = fSurface.fToXYZ * rgb;
    for (int i = 0; i < 3; ++i) pixel[i] = xyz[i];
  }
}

}  // namespace Photo
