#pragma once

#include <string>
#include <vector>

#include "photo/Presets.h"

namespace Tool {

/// Every preset by name, with its description and place; a line each. A file that cannot be used is listed
/// with the reason.
std::string ListPresets(const std::vector<Photo::sPresetEntry>& pPresets);

/// Those that --preset takes by name, for completions: name, tabulator, description, a line each.
std::string ListPresetsForShells(const std::vector<Photo::sPresetEntry>& pPresets);

}  // namespace Tool
