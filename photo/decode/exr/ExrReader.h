#pragma once

#include <string>

#include "photo/picture/Picture.h"
#include "photo/picture/PictureChoice.h"

namespace Photo {

/// Opens an OpenEXR picture, whose rows are read in full float: the part and layer of pChoice, with the
/// channels R, G, B, a single Y, or Y with RY and BY, stored in lines or tiles (the level of full size).
/// Primaries come from the chromaticities attribute. Alpha (A) is kept; colours are premultiplied.
///
/// The picture is the display window: what is stored beyond it is cut off, what is missing in it is black and
/// transparent. Environment maps are their whole data window, as is a picture whose display window is
/// elsewhere, or far too large for it (which leaves a warning). Further parts and layers, and pixels that are
/// not square, leave a warning. Throws cFailure.
sOpenedPicture OpenExr(const std::string& pFile, const sPictureChoice& pChoice, const tMemoryGate& pGate);

}  // namespace Photo
