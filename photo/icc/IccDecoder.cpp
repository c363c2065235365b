#include "photo/icc/IccDecoder.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Photo {
namespace {

struct sColourModel {
  int fColours;
  cmsColorSpaceSignature fSignature;
  cmsUInt32Number fFormat;
};
constexpr sColourModel kModels[] = {
    {1, cmsSigGrayData, TYPE_GRAY_FLT}, {3, cmsSigRgbData, TYPE_RGB_FLT}, {4, cmsSigCmykData, TYPE_CMYK_FLT}};

void* MakeTransform(cmsHPROFILE pFrom, int pColours) {
  for (const sColourModel& model : kModels) {
    if (model.fColours != pColours || model.fSignature != cmsGetColorSpace(pFrom)) continue;
    const tIccHandle xyz(cmsCreateXYZProfile());
    if (xyz == nullptr) return nullptr;
    return cmsCreateTransform(pFrom, model.fFormat, xyz.get(), TYPE_XYZ_FLT, INTENT_RELATIVE_COLORIMETRIC,
                              cmsFLAGS_NOCACHE);
  }
  return nullptr;
}

std::string ReadName(cmsHPROFILE pProfile) {
  char text[256] = {};
  cmsGetProfileInfoASCII(pProfile, cmsInfoDescription, "en", "US", text, sizeof text - 1);
  std::string name = text;
  std::erase_if(name, [](char pC) { return pC < ' ' || pC == '\x7f'; });  // it may be printed
  return name.empty() ? "unnamed" : name;
}

/// Whether the profile has tables as well, which win over curves and matrix.
bool HasTables(cmsHPROFILE pProfile) {
  const cmsTagSignature tables[] = {cmsSigAToB0Tag, cmsSigAToB1Tag, cmsSigDToB0Tag, cmsSigDToB1Tag};
  return std::any_of(std::begin(tables), std::end(tables),
                     [&](cmsTagSignature pTag) { return cmsIsTag(pProfile, pTag); });
}

template <class tTag>
const tTag* ReadTag(cmsHPROFILE pProfile, cmsTagSignature pTag) {
  return static_cast<const tTag*>(cmsReadTag(pProfile, pTag));
}

/// The power that the curve follows where it ends.
float FindEndPower(const cmsToneCurve* pCurve) {
  constexpr float kBefore = 0.98f;
  const float ratio = cmsEvalToneCurveFloat(pCurve, kBefore) / cmsEvalToneCurveFloat(pCurve, 1.0f);
  const float power = std::log(ratio) / std::log(kBefore);
  return power > 0.0f && power < 10.0f ? power : 1.0f;
}

}  // namespace

std::unique_ptr<cIccDecoder> cIccDecoder::FromProfile(const void* pData, std::size_t pSize, int pColours) {
  tIccHandle profile = OpenIccProfile(pData, pSize);
  if (profile == nullptr) return nullptr;
  void* const transform = MakeTransform(profile.get(), pColours);
  if (transform == nullptr) return nullptr;
  return std::unique_ptr<cIccDecoder>(new cIccDecoder(std::move(profile), transform));
}

cIccDecoder::cIccDecoder(tIccHandle pProfile, void* pTransform)
    : fProfile(std::move(pProfile)), fTransform(pTransform), fName(ReadName(fProfile.get())) {
  FindMatrix();
}

cIccDecoder::~cIccDecoder() {
  cmsDeleteTransform(fTransform);
}

void cIccDecoder::FindMatrix() {
  constexpr cmsTagSignature kColorants[] = {cmsSigRedColorantTag, cmsSigGreenColorantTag,
                                            cmsSigBlueColorantTag};
  constexpr cmsTagSignature kCurves[] = {cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag};
  if (cmsGetColorSpace(fProfile.get()) != cmsSigRgbData || cmsGetPCS(fProfile.get()) != cmsSigXYZData) return;
  if (HasTables(fProfile.get())) return;
  TmEngine::cMatrix33 matrix;
  for (int i = 0; i < 3; ++i) {
    const auto* const colorant = ReadTag<cmsCIEXYZ>(fProfile.get(), kColorants[i]);
    const auto* const curve = ReadTag<cmsToneCurve>(fProfile.get(), kCurves[i]);
    if (colorant == nullptr || curve == nullptr) return;
    matrix[i] = static_cast<float>(colorant->X);
    matrix[3 + i] = static_cast<float>(colorant->Y);
    matrix[6 + i] = static_cast<float>(colorant->Z);
    fCurves[static_cast<std::size_t>(i)] = {curve, cmsIsToneCurveLinear(curve) != 0, FindEndPower(curve)};
  }
  fMatrix = matrix;
}

void cIccDecoder::ToXYZ(const float* pFrom, float* pTo, int pWidth) const {
  cmsDoTransform(fTransform, pFrom, pTo, static_cast<cmsUInt32Number>(pWidth));
}

float cIccDecoder::Linearise(int pChannel, float pSample) const {
  const sCurve& curve = fCurves[static_cast<std::size_t>(pChannel)];
  if (curve.fIsLinear || std::isnan(pSample)) return pSample;
  if (pSample < 0.0f) return -Linearise(pChannel, -pSample);
  const float inside = cmsEvalToneCurveFloat(curve.fCurve, std::min(pSample, 1.0f));
  return pSample > 1.0f ? inside * std::pow(pSample, curve.fEndPower) : inside;
}

}  // namespace Photo
