#pragma once

#include <optional>
#include <string>

#include "photo/io/AmendedFile.h"

namespace Photo {

/// What has to be changed in a TIFF file whose alpha is associated, so that its samples are read as they are
/// stored: libvips divides them by alpha, which loses light without cover. None for other files. pPage:
/// counted from 1, 0 for the first.
std::optional<sAmendment> FindAssociatedAlpha(const std::string& pFile, int pPage);

}  // namespace Photo
