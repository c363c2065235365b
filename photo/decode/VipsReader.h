#pragma once

#include <string>

#include "photo/picture/Picture.h"
#include "photo/picture/PictureChoice.h"

namespace Photo {

/// Opens Radiance, PNG, TIFF, JPEG, WebP, HEIF, AVIF and JPEG XL pictures; libvips knows them by their
/// content. Samples are decoded as the file states: through an ICC profile, or by numbers (PNG, HEIF, AVIF);
/// where it states nothing, integers are sRGB, and floats are linear light. Orientation is applied. The rows
/// are left in the file. Throws cFailure.
sOpenedPicture OpenWithVips(const std::string& pFile, const sPictureChoice& pChoice,
                            const tMemoryGate& pGate);

}  // namespace Photo
