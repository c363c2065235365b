#pragma once

#include <memory>

#include "photo/picture/Picture.h"

namespace Photo {

/// pPicture reduced to pLongSide pixels on its longer side, by averaging light over areas; transparent pixels
/// add none. A picture that is small enough is given back as it is. Throws cFailure.
sPicture ReducePicture(sPicture pPicture, int pLongSide);

/// Single pixels of the picture, evenly over it, 1024 on its longer side at most. Averages are neither as
/// bright nor as dark as pixels are, so that shares of clipped pixels are found among these. Throws cFailure.
std::unique_ptr<TmEngine::cBitmapXYZ32> TakeSample(const sPicture& pFrom);

}  // namespace Photo
