#pragma once

#include <optional>
#include <string>
#include <vector>

#include "photo/light/CicpColors.h"

namespace Photo {

/// The colours that a HEIF or AVIF file states by numbers (nclx) for its primary picture; none where it
/// leaves that to a profile, or where they are not known here.
std::optional<sCicpColors> ReadHeifColors(const std::string& pFile, std::vector<std::string>& pWarnings);

}  // namespace Photo
