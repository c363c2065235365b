#pragma once

#include <string>

#include "cli/Picture.h"

namespace Cli {

/// Reads Radiance, PNG, TIFF, JPEG, WebP, HEIF, AVIF and JPEG XL pictures; libvips knows them by their
/// content. Samples are decoded through the embedded ICC profile; without one integers are sRGB, and floats
/// are linear light. Orientation is applied. Throws cFailure.
sPicture ReadWithVips(const std::string& pFile);

}  // namespace Cli
