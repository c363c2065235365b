#pragma once

#include <string>
#include <vector>

#include "cli/Options.h"
#include "photo/render/Settings.h"

namespace CLI {
class App;
}

namespace Tool {

/// What a command line says of the look.
struct sSettingsOptions {
  std::string fFromResult;            ///< A picture whose settings are the base; empty for the defaults.
  std::vector<std::string> fPresets;  ///< Names or files, in the order in which they are laid over it.
  Photo::sSettingsChange fGiven;      ///< The options, which win over all.
  std::string fSaveAs;                ///< A preset to write, name or file; empty for none.
  bool fList = false;

  /// Whether there is something to do without a picture.
  bool AsksForPresets() const { return fList || !fSaveAs.empty(); }
};

/// Adds the sliders and --wrap. pGiven must outlive the parsing.
void AddSliderOptions(CLI::App& pVerb, Photo::sSettingsChange& pGiven);

/// Adds the sliders, --wrap, and all that has to do with presets. pOptions must outlive the parsing.
void AddSettingsOptions(CLI::App& pVerb, sSettingsOptions& pOptions);

/// What is laid over the base: the presets in their order, then the options. Throws cFailure.
Photo::sSettingsChange GetChange(const sSettingsOptions& pOptions);

/// Lists the presets and saves one, as far as that is asked for. pBase: what TakeFromResult found. Throws
/// cFailure.
void ListAndSavePresets(const sSettingsOptions& pOptions, const Photo::sSettings& pBase);

/// Takes settings and output options from the result that is named, if one is; those that pVerb was given on
/// its command line stay, and so does what pOutput's format has no use for (pOutput may be empty). Warns on
/// standard error of a depth that the format does not hold, and of a preview. Throws cFailure.
void TakeFromResult(const CLI::App& pVerb, const sSettingsOptions& pOptions, const std::string& pOutput,
                    Photo::sSettings& pSettings, Photo::sOutputOptions& pResult);

}  // namespace Tool
