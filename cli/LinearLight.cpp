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

using tMatrixBuilder = TmEngine::cMatrix33 (*)(float, float, float, float, float, float, float, float);

TmEngine::cMatrix33 Build(tMatrixBuilder pBuilder, const sPrimaries& pP) {
  return pBuilder(pP.fRed.fX, pP.fRed.fY, pP.fGreen.fX, pP.fGreen.fY, pP.fBlue.fX, pP.fBlue.fY, pP.fWhite.fX,
                  pP.fWhite.fY);
}

/// Dark noise has parts below 0 that cancel the others' luminance, and would be rendered as bright specks of
/// pure colour. So what is below 0 in RGB of Rec. 2020, which holds the colours of real surfaces, becomes 0
/// there. All other pixels stay bit for bit.
void FitGamut(const sPicture& pPicture) {
  const sPrimaries real{{0.708f, 0.292f}, {0.17f, 0.797f}, {0.131f, 0.046f}, {0.3127f, 0.329f}};
  const TmEngine::cMatrix33 toRGB = Build(&TmEngine::cColorSpace::BuildXYZToRGB, real);
  const TmEngine::cMatrix33 toXYZ = Build(&TmEngine::cColorSpace::BuildRGBToXYZ, real);
  ForEachPixel(pPicture, [&](float* pPixel) {
    TmEngine::cVector3 rgb = toRGB * TmEngine::cVector3(pPixel[0], pPixel[1], pPixel[2]);
    if (rgb[0] >= 0.0f && rgb[1] >= 0.0f && rgb[2] >= 0.0f) return;
    for (int i = 0; i < 3; ++i) rgb[i] = std::max(rgb[i], 0.0f);
    const TmEngine::cVector3 xyz = toXYZ * rgb;
    for (int i = 0; i < 3; ++i) pPixel[i] = xyz[i];
  });
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
  TmEngine::cImageUtils::ColorTransform(pPicture.fBitmap.get(),
                                        Build(&TmEngine::cColorSpace::BuildRGBToXYZ, primaries));
  FitGamut(pPicture);
}

}  // namespace Cli
