#pragma once

#include <optional>
#include <string>

#include "photo/render/Settings.h"

namespace Photo {

/// The settings with the look that a file holds (see LookJson.h); none for a file of other content, such as
/// a picture. Throws cFailure, also for what is no regular file.
std::optional<sSettings> LoadLook(const std::string& pFile);

/// Writes the file in one step. pMayReplace: whether one that exists is replaced. Throws cFailure.
void SaveLook(const std::string& pFile, const sSettings& pSettings, bool pMayReplace);

}  // namespace Photo
