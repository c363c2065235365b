#include "cli/Options.h"

#include <map>
#include <string>

namespace Cli {
namespace {

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

void AddSettingsOptions(CLI::App& pVerb, sSettings& pSettings) {
  for (const sSlider& slider : GetSliders()) {
    pVerb.add_option(std::string("--") + slider.fName, pSettings.*slider.fField, slider.fMeaning)
        ->check(InRange(slider.fLowest, slider.fHighest))
        ->option_text(ToText(slider.fLowest) + ".." + ToText(slider.fHighest) + " [" +
                      ToText(sSettings().*slider.fField) + "]")
        ->group("Sliders");
  }
  const std::map<std::string, eWrap> names = {
      {"none", eWrap::kNone}, {"horizontal", eWrap::kHorizontal}, {"auto", eWrap::kAuto}};
  pVerb
      .add_option_function<std::string>(
          "--wrap", [names, &pSettings](const std::string& pName) { pSettings.fWrap = names.at(pName); },
          "Whether the left and right edges meet, as in full panoramas; auto looks at the picture")
      ->check(CLI::IsMember({"none", "horizontal", "auto"}))
      ->option_text("none|horizontal|auto [auto]")
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
