#pragma once

#include <string>

#include "photo/picture/Picture.h"

namespace Photo {

/// Opens a portable float map: three samples per pixel ("PF") or one ("Pf"), bottom row first, either byte
/// order. The samples are taken as they are, whatever scale the header states. Throws cFailure.
sOpenedPicture OpenPfm(const std::string& pFile, const tMemoryGate& pGate);

}  // namespace Photo
