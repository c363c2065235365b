#include "cli/LightRows.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace Cli {
namespace {

/// Far above any light, and far enough below the largest float for the sums of a colour matrix.
constexpr float kLargestSample = 1e30f;

/// What a row holds. In the bits of floats, read as integers, larger is larger above 0, and NaN is largest.
struct sRowScan {
  std::int32_t fLargest = 0;
  std::int32_t fLargestMagnitude = 0;
  std::int32_t fSigns = 0;

  sRowScan(const float* pRow, int pSamples) {
    for (int i = 0; i < pSamples; ++i) {
      const auto bits = std::bit_cast<std::int32_t>(pRow[i]);
      const std::int32_t magnitude = bits & 0x7fffffff;
      fLargest = bits > fLargest ? bits : fLargest;
      fLargestMagnitude = magnitude > fLargestMagnitude ? magnitude : fLargestMagnitude;
      fSigns |= bits;
    }
  }
  bool IsSound() const { return std::bit_cast<float>(fLargestMagnitude) <= kLargestSample; }
  bool HasNegative() const { return fSigns < 0; }
};

/// The larger one of pLargest and the samples in range.
float FindLargest(const float* pRow, int pSamples, float pLargest) {
  for (int i = 0; i < pSamples; ++i) {
    if (pRow[i] > pLargest && pRow[i] <= kLargestSample) pLargest = pRow[i];
  }
  return pLargest;
}

bool HasInfinity(const float* pRow, int pSamples) {
  return std::any_of(pRow, pRow + pSamples, [](float pV) { return std::isinf(pV) && pV > 0.0f; });
}

float RepairSample(float pSample, float pLargest) {
  if (std::isnan(pSample)) return 0.0f;
  if (std::isinf(pSample)) return pSample > 0.0f ? pLargest : 0.0f;
  return std::clamp(pSample, -kLargestSample, kLargestSample);
}

/// As the engine's transform of whole pictures does it: the order of the sum decides its last bits.
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

cLightRows::cLightRows(const sLight& pLight) : fLight(pLight), fSurface(GetSurfaceColors()) {
  fIsInside = fLight.fToXYZ && IsPositive(fSurface.fToRGB * *fLight.fToXYZ);
}

bool cLightRows::Take(float* pRow, int pCount) {
  const sPart part = {pRow, pCount};
  if (fLight.fIsSound) {
    Convert(part, false);
    return true;
  }
  const int samples = 3 * pCount;
  const sRowScan scan(pRow, samples);
  if (scan.IsSound()) {
    fLargest = std::max(fLargest, std::bit_cast<float>(scan.fLargest));
    Convert(part, scan.HasNegative());
    return true;
  }
  fLargest = FindLargest(pRow, samples, fLargest);
  if (HasInfinity(pRow, samples)) {
    fWaiting.push_back(part);
    return false;
  }
  Repair(part, fLargest);
  Convert(part, true);
  return true;
}

void cLightRows::Finish(sPicture& pPicture) {
  for (const sPart& part : fWaiting) {
    Repair(part, fLargest > 0.0f ? fLargest : 1.0f);
    Convert(part, true);
  }
  fWaiting.clear();
  pPicture.fColorSpace = fLight.fColorSpace;
  pPicture.fRepairs = fRepairs;
  const std::int64_t count = fRepairs.fNaN + fRepairs.fInfinite;
  if (count == 0) return;
  pPicture.fWarnings.push_back("repaired " + std::to_string(count) + (count == 1 ? " pixel" : " pixels") +
                               " with values that are not finite (" + std::to_string(fRepairs.fNaN) +
                               " not a number, " + std::to_string(fRepairs.fInfinite) + " infinite)");
}

void cLightRows::Repair(const sPart& pPart, float pLargest) {
  float* pixel = pPart.fPixels;
  for (int x = 0; x < pPart.fCount; ++x, pixel += 3) {
    if (std::all_of(pixel, pixel + 3, [](float pV) { return std::fabs(pV) <= kLargestSample; })) continue;
    const bool isNaN = std::any_of(pixel, pixel + 3, [](float pV) { return std::isnan(pV); });
    ++(isNaN ? fRepairs.fNaN : fRepairs.fInfinite);
    for (int i = 0; i < 3; ++i) pixel[i] = RepairSample(pixel[i], pLargest);
  }
}

void cLightRows::Convert(const sPart& pPart, bool pHasNegative) {
  if (fLight.fToXYZ) Transform(pPart.fPixels, pPart.fCount, *fLight.fToXYZ);
  if (fLight.fFitsGamut && (pHasNegative || !fIsInside)) FitGamut(pPart);
}

void cLightRows::FitGamut(const sPart& pPart) {
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

}  // namespace Cli
