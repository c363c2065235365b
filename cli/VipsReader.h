#pragma once

#include <string>

#include "cli/Picture.h"

namespace Cli {

/// Opens Radiance, PNG, TIFF, JPEG, WebP, HEIF, AVIF and JPEG XL pictures; libvips knows them by their
/// content. Samples are decoded through the embedded ICC profile; without one integers are sRGB, and floats
/// are linear light. Orientation is applied. The rows are left in the file. pIgnoresAlpha: alpha
/// is not read. Throws cFailure.
sPicture OpenWithVips(const std::string& pFile, bool pIgnoresAlpha = false);
/// The same with all rows read.
sPicture ReadWithVips(const std::string& pFile);

}  // namespace Cli
