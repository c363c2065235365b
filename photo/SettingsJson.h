#pragma once

#include <functional>
#include <string>

#include "photo/encode/OutputOptions.h"
#include "photo/render/Settings.h"

namespace Photo {

/// Named settings, as a preset file holds them:
/// {"quorvane-preset": 1, "name": "...", "description": "...", "settings": {"strength": 90, "wrap": "auto"}}
struct sPreset {
  std::string fName;
  std::string fDescription;
  sSettingsChange fChange;
};

/// Numbers are written with the fewest digits that read back as the same float.
std::string ToJson(const sPreset& pPreset);
/// Throws cFailure (usage) for whatever is unknown, of another type, or out of range.
sPreset ParsePreset(const std::string& pText);

/// What a result stores of how it was made, on one line: all settings, and the output options that decide its
/// pixels and its bytes.
std::string ToJson(const sSettings& pSettings, const sOutputOptions& pResult);
/// Throws as ParsePreset does. pIsGiven: by an output option's name, whether the caller decides it.
void ParseResultSettings(const std::string& pText, const std::function<bool(const std::string&)>& pIsGiven,
                         sSettings& pSettings, sOutputOptions& pResult);

}  // namespace Photo
