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

/// The look of a set, as a file holds it: all settings of its pictures and the numbers that they share.
/// {"quorvane-look": 1, "settings": {"strength": 70, ...}, "look": {"black_point": 0.1, "white_point": 2}}
/// "look" also has "base_mean" and "detail_mean" (log10 units) where Tone Compression refers to them.
/// pSettings: with a look that has points. Numbers as in a preset.
std::string LookToJson(const sSettings& pSettings);
/// Throws as ParsePreset does, and for what is missing.
sSettings ParseLook(const std::string& pText);

}  // namespace Photo
