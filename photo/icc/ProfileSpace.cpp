#include "photo/icc/ProfileSpace.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "engine/color/cTransfer.h"
#include "photo/icc/IccHandle.h"

namespace Photo {
namespace {

using TmEngine::cColorSpace;
using TmEngine::cVector3;
using TmEngine::eColorSpaceID;

constexpr eColorSpaceID kFromSmallToWide[] = {
    TmEngine::eColorSpaceID_sRGB, TmEngine::eColorSpaceID_AdobeRGB98, TmEngine::eColorSpaceID_ProPhotoRGB};

/// Whether both decode to the same light, within a fifth of a per cent of white, and the space encodes it
/// back.
bool DecodesAlike(const cColorSpace& pSpace, const cIccDecoder& pDecoder, const float (&pRGB)[3]) {
  constexpr float kTolerance = 0.002f;
  cVector3 linear;
  for (int i = 0; i < 3; ++i) {
    linear[i] = pSpace.GetToLinear()->Evaluate(pRGB[i]);
    if (!(std::fabs(pSpace.GetFromLinear()->Evaluate(linear[i]) - pRGB[i]) <= kTolerance)) return false;
  }
  const cVector3 mine = pSpace.GetRGBToXYZ() * linear;
  float others[3];
  pDecoder.ToXYZ(pRGB, others, 1);
  for (int i = 0; i < 3; ++i) {
    if (!(std::fabs(mine[i] - others[i]) <= kTolerance)) return false;  // NaN is no match
  }
  return true;
}

/// Compares over a grid of colours and, finer, over the greys.
bool Matches(const cColorSpace& pSpace, const cIccDecoder& pDecoder) {
  constexpr int kGrid = 5;
  for (int i = 0; i < kGrid * kGrid * kGrid; ++i) {
    const auto at = [](int pIndex) { return static_cast<float>(pIndex % kGrid) / (kGrid - 1); };
    if (!DecodesAlike(pSpace, pDecoder, {at(i), at(i / kGrid), at(i / kGrid / kGrid)})) return false;
  }
  for (int i = 0; i < 64; ++i) {
    const float grey = static_cast<float>(i) / 63.0f;
    if (!DecodesAlike(pSpace, pDecoder, {grey, grey, grey})) return false;
  }
  return true;
}

constexpr int kTableSize = 65536;

float ToUnit(int pIndex) {
  return static_cast<float>(pIndex) / (kTableSize - 1);
}

/// The curve's values in [0, 1]; NaN gives 0.
std::vector<float> Tabulate(const cmsToneCurve* pCurve) {
  std::vector<float> table;
  for (int i = 0; i < kTableSize; ++i) {
    const float value = cmsEvalToneCurveFloat(pCurve, ToUnit(i));
    table.push_back(value > 0.0f ? std::min(value, 1.0f) : 0.0f);
  }
  return table;
}

/// The inverse of a rising curve. The library's own overflows in tables fine enough for dark tones.
std::vector<float> Invert(const std::vector<float>& pRising) {
  std::vector<float> table;
  std::size_t j = 0;
  for (int i = 0; i < kTableSize; ++i) {
    const float target = ToUnit(i);
    while (j + 2 < pRising.size() && pRising[j + 1] < target) ++j;
    const float step = pRising[j + 1] - pRising[j];
    const float part = step > 0.0f ? std::clamp((target - pRising[j]) / step, 0.0f, 1.0f) : 0.0f;
    table.push_back((static_cast<float>(j) + part) / (kTableSize - 1));
  }
  return table;
}

std::vector<unsigned short> To16Bits(const std::vector<float>& pTable) {
  std::vector<unsigned short> codes(pTable.size());
  std::transform(pTable.begin(), pTable.end(), codes.begin(),
                 [](float pValue) { return static_cast<unsigned short>(std::lround(pValue * 65535.0f)); });
  return codes;
}

template <class tTag>
const tTag* ReadTag(const tIccHandle& pProfile, cmsTagSignature pTag) {
  return static_cast<const tTag*>(cmsReadTag(pProfile.get(), pTag));
}

/// From the colorants and the red tone curve; whether the others are the same is seen when it is compared.
std::unique_ptr<cColorSpace> MakeGenericSpace(const std::string& pProfile) {
  const tIccHandle profile = OpenIccProfile(pProfile.data(), pProfile.size());
  if (profile == nullptr) return nullptr;
  const auto* const red = ReadTag<cmsCIEXYZ>(profile, cmsSigRedColorantTag);
  const auto* const green = ReadTag<cmsCIEXYZ>(profile, cmsSigGreenColorantTag);
  const auto* const blue = ReadTag<cmsCIEXYZ>(profile, cmsSigBlueColorantTag);
  const auto* const curve = ReadTag<cmsToneCurve>(profile, cmsSigRedTRCTag);
  if (red == nullptr || green == nullptr || blue == nullptr || curve == nullptr) return nullptr;
  const std::vector<float> toLinear = Tabulate(curve);
  std::vector<unsigned short> decoding = To16Bits(toLinear);
  std::vector<unsigned short> encoding = To16Bits(Invert(toLinear));
  const auto f = [](double pV) { return static_cast<float>(pV); };
  const TmEngine::cMatrix33 colorants(f(red->X), f(green->X), f(blue->X), f(red->Y), f(green->Y), f(blue->Y),
                                      f(red->Z), f(green->Z), f(blue->Z));
  // Colorants are stated relative to D50, so its white serves as the medium's.
  const cmsCIEXYZ* const white = cmsD50_XYZ();
  return std::make_unique<TmEngine::cColorSpace_GenericRGB>(
      colorants, cVector3(f(white->X), f(white->Y), f(white->Z)), decoding.data(), kTableSize,
      encoding.data(), kTableSize);
}

bool Holds(const cColorSpace& pSpace, const float* pXYZ) {
  constexpr float kTolerance = 0.02f;
  const cVector3 rgb = pSpace.GetXYZToRGB() * cVector3(pXYZ[0], pXYZ[1], pXYZ[2]);
  for (int i = 0; i < 3; ++i) {
    if (!(rgb[i] >= -kTolerance && rgb[i] <= 1.0f + kTolerance)) return false;
  }
  return true;
}

/// The extreme colours of a profile lie where each sample is either 0 or full.
bool HoldsCorners(eColorSpaceID pID, const cIccDecoder& pDecoder, int pColours) {
  const std::unique_ptr<cColorSpace> space(cColorSpace::FromID(pID));
  for (unsigned corner = 0; corner < 1u << pColours; ++corner) {
    float samples[4] = {};
    float xyz[3];
    for (int i = 0; i < pColours; ++i) {
      if ((corner >> i & 1u) != 0) samples[i] = cIccDecoder::GetFullSample(pColours);
    }
    pDecoder.ToXYZ(samples, xyz, 1);
    if (!Holds(*space, xyz)) return false;
  }
  return true;
}

}  // namespace

std::unique_ptr<cColorSpace> MatchProfile(const std::string& pProfile, const cIccDecoder& pDecoder) {
  for (const eColorSpaceID id : kFromSmallToWide) {
    std::unique_ptr<cColorSpace> space(cColorSpace::FromID(id));
    if (Matches(*space, pDecoder)) return space;
  }
  std::unique_ptr<cColorSpace> space = MakeGenericSpace(pProfile);
  if (space != nullptr && !Matches(*space, pDecoder)) space.reset();
  return space;
}

eColorSpaceID ChooseWideSpace(const cIccDecoder& pDecoder, int pColours) {
  const auto* const found =
      std::find_if(std::begin(kFromSmallToWide), std::end(kFromSmallToWide),
                   [&](eColorSpaceID pID) { return HoldsCorners(pID, pDecoder, pColours); });
  return found == std::end(kFromSmallToWide) ? TmEngine::eColorSpaceID_ProPhotoRGB : *found;
}

}  // namespace Photo
