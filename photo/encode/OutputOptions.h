#pragma once

#include "engine/color/cColorSpace.h"
#include "photo/encode/OutputFormat.h"
#include "photo/picture/AlphaChoice.h"

namespace Photo {

/// What the result is, besides its look.
struct sOutputOptions {
  int fDepth = 8;
  bool fDithers = false;  ///< For fDepth 8.
  TmEngine::eColorSpaceID fColorSpace = TmEngine::eColorSpaceID_sRGB;
  int fPreview = 0;  ///< The most pixels on its longer side; 0 for as many as the picture has.
  sAlphaChoice fAlpha;
  sFileOptions fFile;
};

}  // namespace Photo
