#pragma once

#include <string>

#include "cli/Picture.h"

namespace Cli {

/// Reads Radiance, PNG, TIFF and JPEG pictures; libvips knows them by their content. Pictures of integers are
/// decoded through their embedded ICC profile, or as sRGB; pictures of floats are linear light. Orientation
/// is applied, alpha is left out. Throws cFailure.
sPicture ReadWithVips(const std::string& pFile);

}  // namespace Cli
