#pragma once

#include <string>

#include "photo/SettingsJson.h"

namespace Cli {

/// Presets lie, a file NAME.json each, in the user's folder ($XDG_CONFIG_HOME/quorvane/presets, by default
/// ~/.config/quorvane/presets) and in the program's own (share/quorvane/presets beside its bin folder). All
/// functions throw cFailure.

/// A file of that very name comes first, then the user's preset, then the program's.
sPreset LoadPreset(const std::string& pNameOrFile);

/// Every preset by name, with its description and place; a line each. A file that cannot be used is listed
/// with the reason.
std::string ListPresets();

/// Those that --preset takes by name, for completions: name, tabulator, description, a line each.
std::string ListPresetsForShells();

/// pNameOrFile: a file where it has a / or ends in .json, else a name. What exists already is never replaced.
void SavePreset(const std::string& pNameOrFile, const sSettingsChange& pChange);

}  // namespace Cli
