#pragma once

#include "photo/picture/Picture.h"

namespace Photo {

/// pPicture reduced to pLongSide pixels on its longer side, by averaging light over areas; transparent pixels
/// add none. A picture that is small enough is given back as it is. Throws cFailure.
sPicture ReducePicture(sPicture pPicture, int pLongSide);

}  // namespace Photo
