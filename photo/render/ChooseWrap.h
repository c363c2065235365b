#pragma once

#include "photo/picture/Picture.h"
#include "photo/render/Settings.h"

namespace Photo {

/// Whether the engine takes left and right edges of this picture to meet. "auto" goes by its metadata, or
/// else by its edges.
bool ChooseWrap(eWrap pWrap, const sPicture& pPicture);

/// Whether the edges of such a picture, of which no pixel is known yet, may be taken to meet.
bool MayWrap(eWrap pWrap, bool pIsPanorama, int pWidth, int pHeight);

}  // namespace Photo
