#include "cli/SettingsOptions.h"

#include <CLI/CLI.hpp>

#include <filesystem>

#include "cli/PresetFolders.h"
#include "cli/batch/HasName.h"
#include "cli/batch/StoredSettings.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/PresetList.h"
#include "cli/terminal/Warnings.h"
#include "photo/Presets.h"
#include "photo/SettingsJson.h"
#include "photo/base/Failure.h"
#include "photo/encode/OutputFormat.h"

namespace Tool {
namespace {

constexpr char kPresetGroup[] = "Presets";
constexpr char kSliderGroup[] = "Sliders";

/// Refuses what is not a number in the range; NaN fails both comparisons.
CLI::Validator InRange(float pLowest, float pHighest) {
  const std::string range = Photo::ToText(pLowest) + " to " + Photo::ToText(pHighest);
  const auto check = [=](std::string& pText) -> std::string {
    float number = 0.0f;
    const bool isNumber = CLI::detail::lexical_cast(pText, number);
    if (isNumber && number >= pLowest && number <= pHighest) return "";
    return pText + " is not a number from " + range;
  };
  return CLI::Validator(check, range);
}

/// Who tries sliders on previews wants the whole picture in the end.
void WarnOfPreview(const std::string& pResult, int pPreview) {
  if (pPreview == 0) return;
  PrintWarnings(pResult, {"was a " + std::to_string(pPreview) +
                          "-pixel preview, so this result will be one too; use --preview 0 for full size"});
}

/// A depth that nobody asked for gives way where the format does not hold it.
void TakeNearestDepth(const std::string& pOutput, const std::string& pResult,
                      const Photo::sFormatTraits& pFormat, int& pDepth) {
  const int depth = Photo::ChooseDepth(pFormat.fFormat, pDepth);
  if (depth == pDepth) return;
  PrintWarnings(pOutput, {"written with " + std::to_string(depth) + " bits a sample, since " + pFormat.fName +
                          " does not hold the " + std::to_string(pDepth) + " of " + pResult});
  pDepth = depth;
}

/// Opening anything but a file might wait for ever.
void CheckIsResult(const std::string& pFile) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(pFile, error);
  if (error) throw Photo::cFailure(Photo::eFailure::kCannotRead, pFile, error.message());
  if (std::filesystem::is_regular_file(status)) return;
  throw Photo::cFailure(Photo::eFailure::kCannotRead, pFile,
                        "is not a regular file; --settings-from takes a stored result");
}

}  // namespace

void AddSliderOptions(CLI::App& pVerb, Photo::sSettingsChange& pGiven) {
  std::optional<float>* field = pGiven.fSliders.data();
  for (const Photo::sSlider& slider : Photo::GetSliders()) {
    pVerb
        .add_option_function<float>(
            std::string("--") + slider.fName, [field](float pValue) { *field = pValue; }, slider.fMeaning)
        ->check(InRange(slider.fLowest, slider.fHighest))
        ->option_text(Photo::ToText(slider.fLowest) + ".." + Photo::ToText(slider.fHighest) + " [" +
                      Photo::ToText(Photo::sSettings().*slider.fField) + "]")
        ->group(kSliderGroup);
    ++field;
  }
  pVerb
      .add_option_function<std::string>(
          "--wrap", [&pGiven](const std::string& pName) { pGiven.fWrap = Photo::FindWrap(pName); },
          "Whether the left and right edges meet, as in full panoramas; auto looks at the picture")
      ->check(CLI::IsMember({"none", "horizontal", "auto"}))
      ->option_text("none|horizontal|auto [auto]")
      ->group(kSliderGroup);
  pVerb
      .add_option_function<std::string>(
          "--rendering",
          [&pGiven](const std::string& pName) { pGiven.fRendering = Photo::FindRendering(pName); },
          "How the tone curve treats colours: color keeps hue and purity; engine curves each channel, as the "
          "library does, which makes colours stronger and turns them")
      ->check(CLI::IsMember({"color", "engine"}))
      ->option_text("color|engine [color]")
      ->group(kSliderGroup);
}

void AddSettingsOptions(CLI::App& pVerb, sSettingsOptions& pOptions) {
  pVerb
      .add_option("--preset", pOptions.fPresets,
                  "Settings of that name or file; of several, later ones win, and sliders that are given win "
                  "over all")
      ->allow_extra_args(false)
      ->check(HasName())
      ->option_text("PRESET")
      ->group(kPresetGroup);
  pVerb
      .add_option("--settings-from", pOptions.fFromResult,
                  "Start from the settings that an earlier result carries, and how its file was written, "
                  "instead of from the defaults")
      ->check(HasName())
      ->option_text("RESULT")
      ->group(kPresetGroup);
  pVerb
      .add_option("--save-preset", pOptions.fSaveAs,
                  "Write the settings of this command line into a new preset: a name keeps "
                  "it in your own folder, a file (with a / or .json) anywhere; no picture is needed")
      ->check(HasName())
      ->option_text("NEW")
      ->group(kPresetGroup);
  pVerb.add_flag("--list-presets", pOptions.fList, "Show the presets there are; no picture is needed")
      ->group(kPresetGroup);
  AddSliderOptions(pVerb, pOptions.fGiven);
}

Photo::sSettingsChange GetChange(const sSettingsOptions& pOptions) {
  Photo::sSettingsChange change;
  const Photo::sPresetFolders folders = GetPresetFolders();
  for (const std::string& preset : pOptions.fPresets) {
    Photo::Apply(Photo::NameFile("--preset", [&] { return Photo::LoadPreset(folders, preset); }).fChange,
                 change);
  }
  Photo::Apply(pOptions.fGiven, change);
  return change;
}

void ListAndSavePresets(const sSettingsOptions& pOptions, const Photo::sSettings& pBase) {
  if (!pOptions.fSaveAs.empty()) {
    Photo::sSettingsChange change =
        pOptions.fFromResult.empty() ? Photo::sSettingsChange() : Photo::ChangeTo(pBase);
    Photo::Apply(GetChange(pOptions), change);
    Photo::NameFile("--save-preset",
                    [&] { Photo::SavePreset(GetPresetFolders(), pOptions.fSaveAs, change); });
  }
  if (pOptions.fList) Print(ListPresets(Photo::FindPresets(GetPresetFolders())));
}

void TakeFromResult(const CLI::App& pVerb, const sSettingsOptions& pOptions, const std::string& pOutput,
                    Photo::sSettings& pSettings, Photo::sOutputOptions& pResult) {
  const std::string& file = pOptions.fFromResult;
  if (file.empty()) return;
  CheckIsResult(file);
  const std::string text = ReadStoredSettingsApart(file);
  if (text.empty()) {
    throw Photo::cFailure(Photo::eFailure::kUsage, file,
                          "carries no settings; name a result of 'quorvane tonemap'");
  }
  const Photo::sFileOptions given = pResult.fFile;
  const auto isGiven = [&](const std::string& pName) { return pVerb.count("--" + pName) > 0; };
  Photo::NameFile(file, [&] { Photo::ParseResultSettings(text, isGiven, pSettings, pResult); });
  if (pOutput.empty()) return;
  const Photo::sFormatTraits& format =
      Photo::GetTraits(Photo::NameFile(pOutput, [&] { return Photo::ChooseOutputFormat(pOutput, 8); }));
  if (!isGiven("preview")) WarnOfPreview(file, pResult.fPreview);
  if (!isGiven("depth")) TakeNearestDepth(pOutput, file, format, pResult.fDepth);
  if (!isGiven("dither") && pResult.fDepth != 8) pResult.fDithers = false;
  if (format.fQuality == 0) pResult.fFile.fQuality = given.fQuality;
  if (format.fCompression < 0) pResult.fFile.fCompression = given.fCompression;
}

}  // namespace Tool
