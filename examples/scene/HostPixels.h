#pragma once

#include <vector>

#include "examples/scene/Render.h"

namespace Scene {

/// The picture as a host hands it to the library (see quorvane.h), three samples per pixel, repeated in both
/// directions to fill pWidth x pHeight. pBits: 8 or 16 for gamma-encoded samples, 32 for shared exponents.
std::vector<unsigned char> HostPixels(const sHdrPicture& pPicture, int pWidth, int pHeight, int pBits);

}  // namespace Scene
