#include "cli/Settings.h"

#include <charconv>

#include "export/HostSettings.h"

namespace Cli {
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

}  // namespace

std::span<const sSlider> GetSliders() {
  return kSliders;
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

std::string ToText(float pNumber) {
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, pNumber);
  return {text, end.ptr};
}

TmEngine::sToneParameters MapToParameters(const sSettings& pSettings, bool pWrap) {
  tm_quorvane_settings record = {};
  record.strength = pSettings.fStrength;
  record.lighting = pSettings.fLighting;
  record.tone_compression = pSettings.fToneCompression;
  record.white_clip = pSettings.fWhiteClip;
  record.black_clip = pSettings.fBlackClip;
  record.microcontrast = pSettings.fMicrocontrast;
  record.horizontal_wrap = pWrap ? 1.0f : 0.0f;
  TmEngine::sToneParameters parameters = MapSettings(record);
  parameters.fContrast = pSettings.fContrast;
  return parameters;
}

}  // namespace Cli
