#include "photo/render/Settings.h"

#include "engine/ToneSliders.h"

namespace Photo {
namespace {

constexpr sSlider kSliders[] = {
    {"strength", &sSettings::fStrength, -200.0f, 150.0f,
     "Compression of large contrasts; usual from -100 to 100, higher shows more of lights and shadows"},
    {"lighting", &sSettings::fLighting, -14.0f, 10.0f,
     "Reach of the local adaptation over tones; higher is more local"},
    {"tone-compression", &sSettings::fToneCompression, 0.0f, 100.0f,
     "Extra pull of far tones toward the mean; 0 is none"},
    {"white-clip", &sSettings::fWhiteClip, 0.0f, 200.0f,
     "Pixels above white, in twentieths of a per cent: 20 is 1 % of the picture"},
    {"black-clip", &sSettings::fBlackClip, 0.0f, 50.0f, "Pixels below black, in per cent of the picture"},
    {"microcontrast", &sSettings::fMicrocontrast, -11.0f, 10.0f,
     "Reach of the local adaptation over the picture; higher is finer"},
    {"contrast", &sSettings::fContrast, -100.0f, 100.0f,
     "Steepness of the final tone curve; higher darkens shadows and lightens lights"},
    {"saturation", &sSettings::fSaturation, -100.0f, 100.0f,
     "Purity of all colours: -100 is grey, 0 as photographed, 100 doubled"}};

static_assert(std::size(kSliders) == sSettingsChange::kSliders);

}  // namespace

std::span<const sSlider> GetSliders() {
  return kSliders;
}

sSettingsChange ChangeTo(const sSettings& pSettings) {
  sSettingsChange change;
  for (std::size_t i = 0; i < change.fSliders.size(); ++i) change.fSliders[i] = pSettings.*kSliders[i].fField;
  change.fWrap = pSettings.fWrap;
  change.fRendering = pSettings.fRendering;
  return change;
}

void Apply(const sSettingsChange& pChange, sSettings& pSettings) {
  for (std::size_t i = 0; i < pChange.fSliders.size(); ++i) {
    if (pChange.fSliders[i].has_value()) pSettings.*kSliders[i].fField = *pChange.fSliders[i];
  }
  if (pChange.fWrap.has_value()) pSettings.fWrap = *pChange.fWrap;
  if (pChange.fRendering.has_value()) pSettings.fRendering = *pChange.fRendering;
}

void Apply(const sSettingsChange& pLater, sSettingsChange& pChange) {
  for (std::size_t i = 0; i < pLater.fSliders.size(); ++i) {
    if (pLater.fSliders[i].has_value()) pChange.fSliders[i] = pLater.fSliders[i];
  }
  if (pLater.fWrap.has_value()) pChange.fWrap = pLater.fWrap;
  if (pLater.fRendering.has_value()) pChange.fRendering = pLater.fRendering;
}

const char* GetWrapName(eWrap pWrap) {
  switch (pWrap) {
    case eWrap::kNone:
      return "none";
    case eWrap::kHorizontal:
      return "horizontal";
    default:
      return "auto";
  }
}

std::optional<eWrap> FindWrap(const std::string& pName) {
  for (const eWrap wrap : {eWrap::kNone, eWrap::kHorizontal, eWrap::kAuto}) {
    if (pName == GetWrapName(wrap)) return wrap;
  }
  return std::nullopt;
}

const char* GetRenderingName(eRendering pRendering) {
  return pRendering == eRendering::kColor ? "color" : "engine";
}

std::optional<eRendering> FindRendering(const std::string& pName) {
  for (const eRendering rendering : {eRendering::kColor, eRendering::kEngine}) {
    if (pName == GetRenderingName(rendering)) return rendering;
  }
  return std::nullopt;
}

bool AreUsable(const TmEngine::sBlackWhite& pPoints) {
  return pPoints.fBlack >= 0.0f && pPoints.fWhite > pPoints.fBlack && pPoints.fWhite <= kLargestPoint;
}

TmEngine::sToneParameters MapToParameters(const sSettings& pSettings, bool pWrap) {
  TmEngine::sToneParameters parameters = TmEngine::MapSliders({.fStrength = pSettings.fStrength,
                                                               .fLighting = pSettings.fLighting,
                                                               .fToneCompression = pSettings.fToneCompression,
                                                               .fWhiteClip = pSettings.fWhiteClip,
                                                               .fBlackClip = pSettings.fBlackClip,
                                                               .fMicrocontrast = pSettings.fMicrocontrast});
  parameters.fHorizontalWrap = pWrap;
  parameters.fContrast = pSettings.fContrast;
  return parameters;
}

}  // namespace Photo
