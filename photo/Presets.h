#pragma once

#include <string>
#include <vector>

#include "photo/SettingsJson.h"

namespace Photo {

// All functions throw cFailure.

/// Where presets are, a file NAME.json each. Empty names stand for no folder.
struct sPresetFolders {
  std::string fUser;  ///< The user's presets hide
  std::string fOwn;   ///< the program's of the same name.
};

/// A file of that very name comes first, then the user's preset, then the program's.
sPreset LoadPreset(const sPresetFolders& pFolders, const std::string& pNameOrFile);

struct sPresetEntry {
  std::string fName;
  std::string fFile;
  bool fIsBuiltIn;  ///< One of the program's.
  bool fIsHidden;   ///< By the user's preset of that name.
  std::string fDescription;
  std::string fFault;  ///< Why it cannot be used; empty where it can.
};

/// The user's presets, then the program's, by name.
std::vector<sPresetEntry> FindPresets(const sPresetFolders& pFolders);

/// pNameOrFile: a file where it has a / or ends in .json, else a name. What exists already is never replaced.
void SavePreset(const sPresetFolders& pFolders, const std::string& pNameOrFile,
                const sSettingsChange& pChange);

}  // namespace Photo
