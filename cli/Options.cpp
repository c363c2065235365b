#include "cli/Options.h"

#include <cstdio>
#include <map>
#include <string>

namespace Cli {
namespace {

struct sSlider {
  const char* fName;
  float tm_quorvane_settings::*fField;
  float fDefault;
  float fLowest;
  float fHighest;
  const char* fMeaning;
};

/// The ranges end where the engine stops telling values apart, or where pictures stop being pictures.
constexpr sSlider kSliders[] = {
    {"strength", &tm_quorvane_settings::strength, 70.0f, -200.0f, 150.0f,
     "Compression of large contrasts; usual from -100 to 100, higher shows more of lights and shadows"},
    {"lighting", &tm_quorvane_settings::lighting, 0.0f, -14.0f, 10.0f,
     "Reach of the local adaptation over tones; higher is more local"},
    {"tone-compression", &tm_quorvane_settings::tone_compression, 0.0f, 0.0f, 100.0f,
     "Extra pull of far tones toward the mean; 0 is none"},
    {"white-clip", &tm_quorvane_settings::white_clip, 5.0f, 0.0f, 200.0f,
     "Pixels above white, in twentieths of a per cent: 20 is 1 % of the picture"},
    {"black-clip", &tm_quorvane_settings::black_clip, 0.1f, 0.0f, 50.0f,
     "Pixels below black, in per cent of the picture"},
    {"microcontrast", &tm_quorvane_settings::microcontrast, 0.0f, -11.0f, 10.0f,
     "Reach of the local adaptation over the picture; higher is finer"}};

std::string ToText(float pNumber) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", static_cast<double>(pNumber));
  return text;
}

/// Refuses what is not a number in the range; NaN fails both comparisons.
CLI::Validator InRange(float pLowest, float pHighest) {
  const std::string range = ToText(pLowest) + " to " + ToText(pHighest);
  const auto check = [=](std::string& pText) -> std::string {
    float number = 0.0f;
    const bool isNumber = CLI::detail::lexical_cast(pText, number);
    if (isNumber && number >= pLowest && number <= pHighest) return "";
    return pText + " is not a number from " + range;
  };
  return CLI::Validator(check, range);
}

}  // namespace

sToneOptions::sToneOptions() {
  for (const sSlider& slider : kSliders) fSettings.*slider.fField = slider.fDefault;
}

void AddToneOptions(CLI::App& pVerb, sToneOptions& pOptions) {
  for (const sSlider& slider : kSliders) {
    pVerb.add_option(std::string("--") + slider.fName, pOptions.fSettings.*slider.fField, slider.fMeaning)
        ->check(InRange(slider.fLowest, slider.fHighest))
        ->option_text(ToText(slider.fLowest) + ".." + ToText(slider.fHighest) + " [" +
                      ToText(slider.fDefault) + "]")
        ->group("Sliders");
  }
  pVerb
      .add_flag_callback(
          "--wrap", [&pOptions] { pOptions.fSettings.horizontal_wrap = 1.0f; },
          "The left and right edges meet (full panoramas)")
      ->group("Sliders");
}

void AddDepthOption(CLI::App& pVerb, int& pDepth, const std::string& pDefault) {
  pVerb.add_option("--depth", pDepth, "Bits a sample of the result; 16 for .png and .tif only")
      ->check(CLI::IsMember({8, 16}))
      ->option_text("8|16 [" + pDefault + "]")
      ->group("Result");
}

void AddOutputOptions(CLI::App& pVerb, sOutputOptions& pOptions) {
  AddDepthOption(pVerb, pOptions.fDepth, "8");
  const std::map<std::string, TmEngine::eColorSpaceID> names = {
      {"srgb", TmEngine::eColorSpaceID_sRGB},
      {"adobergb", TmEngine::eColorSpaceID_AdobeRGB98},
      {"prophoto", TmEngine::eColorSpaceID_ProPhotoRGB}};
  pVerb
      .add_option_function<std::string>(
          "--colorspace",
          [names, &pOptions](const std::string& pName) { pOptions.fColorSpace = names.at(pName); },
          "Colour space of the result, whose profile is embedded")
      ->check(CLI::IsMember({"srgb", "adobergb", "prophoto"}))
      ->option_text("srgb|adobergb|prophoto [srgb]")
      ->group("Result");
}

}  // namespace Cli
