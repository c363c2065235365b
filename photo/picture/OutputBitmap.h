#pragma once

#include <memory>

#include "engine/image/cBitmapLDR.h"

/// An output image that frees its pixels silently (an 8-bit image writes a line when it frees them itself).
/// A depth of 12 is rendered as 16. Null for depths other than 8, 12 and 16. Throws what the images'
/// constructors throw.
std::unique_ptr<TmEngine::cBitmapLDR> MakeOutputBitmap(int pWidth, int pHeight, int pBitDepth,
                                                       TmEngine::eColorSpaceID pID);
