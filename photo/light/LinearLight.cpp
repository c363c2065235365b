#include "photo/light/LinearLight.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "engine/color/cColorSpace.h"

namespace Photo {
namespace {

using TmEngine::cVector2;

/// Twice the area of the triangle, positive when its corners run counter-clockwise. NaN for a NaN corner.
double TwiceArea(const cVector2& pA, const cVector2& pB, const cVector2& pC) {
  const double aX = pA.fX;
  const double aY = pA.fY;
  return (pB.fX - aX) * (pC.fY - aY) - (pC.fX - aX) * (pB.fY - aY);
}

}  // namespace

bool SpanColorSpace(const sPrimaries& pP) {
  constexpr double kLeast = 1e-4;
  const double area = TwiceArea(pP.fRed, pP.fGreen, pP.fBlue);
  const double sign = area < 0.0 ? -1.0 : 1.0;
  return std::fabs(area) > kLeast && std::fabs(area) < 100.0 && pP.fWhite.fY > 0.01f &&
         sign * TwiceArea(pP.fWhite, pP.fRed, pP.fGreen) > kLeast &&
         sign * TwiceArea(pP.fWhite, pP.fGreen, pP.fBlue) > kLeast &&
         sign * TwiceArea(pP.fWhite, pP.fBlue, pP.fRed) > kLeast;
}

namespace {

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

struct sNamedPrimaries {
  const char* fName;
  sPrimaries fPrimaries;
};
const sNamedPrimaries kNamed[] = {
    {"sRGB primaries", {}},
    {"Display P3 primaries", {{0.68f, 0.32f}, {0.265f, 0.69f}, {0.15f, 0.06f}, {0.3127f, 0.329f}}},
    {"Rec. 2020 primaries", {{0.708f, 0.292f}, {0.17f, 0.797f}, {0.131f, 0.046f}, {0.3127f, 0.329f}}},
    {"ACES primaries", {{0.7347f, 0.2653f}, {0.0f, 1.0f}, {0.0001f, -0.077f}, {0.32168f, 0.33767f}}},
    {"ACEScg primaries", {{0.713f, 0.293f}, {0.165f, 0.83f}, {0.128f, 0.044f}, {0.32168f, 0.33767f}}},
    {"CIE XYZ", {{1.0f, 0.0f}, {0.0f, 1.0f}, {0.0f, 0.0f}, {1.0f / 3.0f, 1.0f / 3.0f}}}};
constexpr int kRec2020 = 2;

bool AreAlike(const cVector2& pA, const cVector2& pB) {
  constexpr float kTolerance = 0.002f;
  return std::fabs(pA.fX - pB.fX) <= kTolerance && std::fabs(pA.fY - pB.fY) <= kTolerance;
}

}  // namespace

const sPrimaries* FindPrimaries(const std::string& pName) {
  const auto* const named = std::find_if(std::begin(kNamed), std::end(kNamed),
                                         [&](const auto& pNamed) { return pName == pNamed.fName; });
  return named == std::end(kNamed) ? nullptr : &named->fPrimaries;
}

std::string NamePrimaries(const sPrimaries& pP) {
  const auto* const named = std::find_if(std::begin(kNamed), std::end(kNamed), [&](const auto& pNamed) {
    const sPrimaries& other = pNamed.fPrimaries;
    return AreAlike(pP.fRed, other.fRed) && AreAlike(pP.fGreen, other.fGreen) &&
           AreAlike(pP.fBlue, other.fBlue) && AreAlike(pP.fWhite, other.fWhite);
  });
  return named == std::end(kNamed) ? "primaries of the file's own" : named->fName;
}

sLinearLight MakeLinearLight(const std::optional<sPrimaries>& pStated, std::vector<std::string>& pWarnings) {
  sPrimaries primaries;
  if (pStated && SpanColorSpace(*pStated)) {
    primaries = *pStated;
  } else if (pStated && !AreAllZero(*pStated)) {  // some programs write zeros for "not known"
    pWarnings.emplace_back("its header states primaries that span no colour space; sRGB is taken");
  }
  return {Build(&TmEngine::cColorSpace::BuildRGBToXYZ, primaries), true,
          "linear light, " + NamePrimaries(primaries)};
}

sSurfaceColors GetSurfaceColors() {
  const sPrimaries& primaries = kNamed[kRec2020].fPrimaries;
  return {Build(&TmEngine::cColorSpace::BuildXYZToRGB, primaries),
          Build(&TmEngine::cColorSpace::BuildRGBToXYZ, primaries)};
}

}  // namespace Photo
