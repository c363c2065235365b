#pragma once

#include <string>

#include "cli/Picture.h"

namespace Cli {

/// Reads a picture of any known format, which is told by the file's content, not by its name: OpenEXR,
/// PFM, Radiance, TIFF, PNG, JPEG, WebP, HEIF, AVIF, JPEG XL. libvips must be running. Throws cFailure.
sPicture ReadPicture(const std::string& pFile);

}  // namespace Cli
