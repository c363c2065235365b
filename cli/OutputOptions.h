#pragma once

#include "cli/OutputFormat.h"
#include "engine/cColorSpace.h"

namespace Cli {

/// What the result is, besides its look.
struct sOutputOptions {
  int fDepth = 8;
  TmEngine::eColorSpaceID fColorSpace = TmEngine::eColorSpaceID_sRGB;
  sFileOptions fFile;
};

}  // namespace Cli
