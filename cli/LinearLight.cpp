#include "cli/LinearLight.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

#include "engine/cColorSpace.h"
#include "engine/cImageUtils.h"

namespace Cli {
namespace {

using TmEngine::cVector2;

/// Far above any light, and far enough below the largest float for the sums of a colour matrix.
constexpr float kLargestSample = 1e30f;

/// Calls pBody with the three samples of every pixel.
template <class tBody>
void ForEachPixel(const sPicture& pPicture, const tBody& pBody) {
  for (int y = 0; y < pPicture.fBitmap->GetHeight(); ++y) {
    float* pixel = GetRow(pPicture, y);
    for (int x = 0; x < pPicture.fBitmap->GetWidth(); ++x, pixel += 3) pBody(pixel);
  }
}

bool IsSound(const float* pPixel) {
  return std::all_of(pPixel, pPixel + 3, [](float pV) { return std::fabs(pV) <= kLargestSample; });
}

/// The largest sample in range; 1 where none is above 0.
float FindLargest(const sPicture& pPicture) {
  float largest = 0.0f;
  ForEachPixel(pPicture, [&](const float* pPixel) {
    for (int i = 0; i < 3; ++i) {
      if (pPixel[i] > largest && pPixel[i] <= kLargestSample) largest = pPixel[i];
    }
  });
  return largest > 0.0f ? largest : 1.0f;
}

float Repair(float pSample, float pLargest) {
  if (std::isnan(pSample)) return 0.0f;
  if (std::isinf(pSample)) return pSample > 0.0f ? pLargest : 0.0f;
  return std::clamp(pSample, -kLargestSample, kLargestSample);
}

/// Twice the area of the triangle, positive when its corners run counter-clockwise. NaN for a NaN corner.
double TwiceArea(const cVector2& pA, const cVector2& pB, const cVector2& pC) {
  const double aX = pA.fX;
  const double aY = pA.fY;
  return (pB.fX - aX) * (pC.fY - aY) - (pC.fX - aX) * (pB.fY - aY);
}

/// Whether the white lies well inside the triangle of the primaries: then every matrix can be had.
bool SpanColorSpace(const sPrimaries& pP) {
  constexpr double kLeast = 1e-4;
  const double area = TwiceArea(pP.fRed, pP.fGreen, pP.fBlue);
  const double sign = area < 0.0 ? -1.0 : 1.0;
  return std::fabs(area) > kLeast && std::fabs(area) < 100.0 && pP.fWhite.fY > 0.01f &&
         sign * TwiceArea(pP.fWhite, pP.fRed, pP.fGreen) > kLeast &&
         sign * TwiceArea(pP.fWhite, pP.fGreen, pP.fBlue) > kLeast &&
         sign * TwiceArea(pP.fWhite, pP.fBlue, pP.fRed) > kLeast;
}

bool AreAllZero(const sPrimaries& pP) {
  const cVector2 all[] = {pP.fRed, pP.fGreen, pP.fBlue, pP.fWhite};
  return std::all_of(std::begin(all), std::end(all),
                     [](const cVector2& pV) { return pV.fX == 0.0f && pV.fY == 0.0f; });
}

}  // namespace

void RepairSamples(sPicture& pPicture) {
  std::int64_t count = 0;
  ForEachPixel(pPicture, [&](const float* pPixel) { count += IsSound(pPixel) ? 0 : 1; });
  if (count == 0) return;
  const float largest = FindLargest(pPicture);
  ForEachPixel(pPicture, [&](float* pPixel) {
    for (int i = 0; i < 3; ++i) pPixel[i] = Repair(pPixel[i], largest);
  });
  pPicture.fWarnings.push_back("repaired " + std::to_string(count) + (count == 1 ? " pixel" : " pixels") +
                               " with values that are not finite");
}

void SpreadGrey(const sPicture& pPicture) {
  ForEachPixel(pPicture, [](float* pPixel) { pPixel[1] = pPixel[2] = pPixel[0]; });
}

void LinearToXYZ(sPicture& pPicture, const std::optional<sPrimaries>& pStated) {
  RepairSamples(pPicture);
  sPrimaries primaries;
  if (pStated && SpanColorSpace(*pStated)) {
    primaries = *pStated;
  } else if (pStated && !AreAllZero(*pStated)) {  // some programs write zeros for "not known"
    pPicture.fWarnings.emplace_back("its header states primaries that span no colour space; sRGB is taken");
  }
  const sPrimaries& p = primaries;
  const TmEngine::cMatrix33 matrix = TmEngine::cColorSpace::BuildRGBToXYZ(
      p.fRed.fX, p.fRed.fY, p.fGreen.fX, p.fGreen.fY, p.fBlue.fX, p.fBlue.fY, p.fWhite.fX, p.fWhite.fY);
  TmEngine::cImageUtils::ColorTransform(pPicture.fBitmap.get(), matrix);
}

}  // namespace Cli
