#pragma once

#include <optional>
#include <string>
#include <vector>

#include "photo/light/CicpColors.h"

namespace Photo {

/// What a PNG file states of its colours besides an ICC profile, as far as that counts: cICP comes before a
/// profile, sRGB after it, then gAMA and cHRM. None for what a profile says, or else sRGB. Reads no more than
/// the chunks before the pixels; damaged ones are passed over.
std::optional<sCicpColors> ReadPngColors(const std::string& pFile, bool pHasProfile,
                                         std::vector<std::string>& pWarnings);

}  // namespace Photo
