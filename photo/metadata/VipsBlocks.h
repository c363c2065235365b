#pragma once

#include <vips/vips8>

#include "photo/metadata/MetadataBlocks.h"

namespace Photo {

/// The blocks that libvips holds of a picture that was turned upright. Its orientation and thumbnail are left
/// out.
sMetadataBlocks TakeBlocks(const vips::VImage& pImage);

/// Sets the resolution that EXIF states, if it does; it counts more than that of the file.
void TakeExifResolution(sMetadataBlocks& pBlocks);

/// Gives blocks to libvips, to be written with the picture. What is empty leaves the picture as it is.
void SetBlocks(const vips::VImage& pImage, const sMetadataBlocks& pBlocks);

}  // namespace Photo
