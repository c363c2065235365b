#pragma once

#include <string>

#include "photo/picture/Picture.h"
#include "photo/picture/PictureChoice.h"

namespace Photo {

/// Opens a picture of any known format, detected by the file's content, not by its name: OpenEXR,
/// PFM, Radiance, TIFF, PNG, JPEG, WebP, HEIF, AVIF, JPEG XL. libvips must be running. Rows stay in the
/// file. pChoice is for files that hold several pictures, and refused for others. Throws cFailure.
sOpenedPicture OpenPicture(const std::string& pFile, const sPictureChoice& pChoice = {},
                           const tMemoryGate& pGate = {});

/// Opens it, and reads all rows.
sPicture ReadPicture(const std::string& pFile, const sPictureChoice& pChoice = {},
                     const tMemoryGate& pGate = {});

}  // namespace Photo
