#pragma once

#include <string>
#include <vector>

#include "photo/metadata/Exiv2Blocks.h"
#include "photo/metadata/MetadataLibrary.h"

namespace Photo {

/// Drops fields that describe the input's file, or images in it that the result does not have.
void DropFileFields(Exiv2::ExifData& pExif);

/// The metadata as they are right for the result.
sParsed ParseCorrected(const sMetadataBlocks& pBlocks, const sCorrections& pCorrections,
                       std::vector<std::string>& pWarnings);

}  // namespace Photo
