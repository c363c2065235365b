#include "photo/decode/CodedProfile.h"

#include <memory>

#include "photo/icc/IccHandle.h"

namespace Photo {
namespace {

struct sFreeCurve {
  void operator()(cmsToneCurve* pCurve) const { cmsFreeToneCurve(pCurve); }
};
using tCurve = std::unique_ptr<cmsToneCurve, sFreeCurve>;

tCurve MakeCurve(const sCicpColors& pColors) {
  if (pColors.fEncoding == eEncoding::kPower) return tCurve(cmsBuildGamma(nullptr, pColors.fPower));
  constexpr int kPowerWithLine = 4;
  const cmsFloat64Number numbers[] = {2.4, 1.0 / 1.055, 0.055 / 1.055, 1.0 / 12.92, 0.04045};
  return tCurve(cmsBuildParametricToneCurve(nullptr, kPowerWithLine, numbers));
}

cmsCIExyY ToXyY(const TmEngine::cVector2& pPoint) {
  return {static_cast<double>(pPoint.fX), static_cast<double>(pPoint.fY), 1.0};
}

void SetName(const tIccHandle& pProfile, const std::string& pName) {
  cmsMLU* const text = cmsMLUalloc(nullptr, 1);
  cmsMLUsetASCII(text, "en", "US", pName.c_str());
  cmsWriteTag(pProfile.get(), cmsSigProfileDescriptionTag, text);
  cmsMLUfree(text);
}

std::string Save(const tIccHandle& pProfile) {
  constexpr std::size_t kDate = 24;
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(pProfile.get(), nullptr, &size);
  std::string bytes(size, '\0');
  if (!cmsSaveProfileToMem(pProfile.get(), bytes.data(), &size) || size < 128) return "";
  return bytes.replace(kDate, 12, std::string("\x07\xd0\0\1\0\1\0\0\0\0\0\0", 12));
}

}  // namespace

std::string MakeProfile(const sCicpColors& pColors) {
  const sPrimaries& primaries = pColors.fPrimaries;
  const cmsCIExyY white = ToXyY(primaries.fWhite);
  const cmsCIExyYTRIPLE points = {ToXyY(primaries.fRed), ToXyY(primaries.fGreen), ToXyY(primaries.fBlue)};
  const tCurve curve = MakeCurve(pColors);
  if (curve == nullptr) return "";
  cmsToneCurve* const curves[] = {curve.get(), curve.get(), curve.get()};
  const tIccHandle profile(cmsCreateRGBProfile(&white, &points, curves));
  if (profile == nullptr) return "";
  SetName(profile, pColors.fName);
  return Save(profile);
}

}  // namespace Photo
