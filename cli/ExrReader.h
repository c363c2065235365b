#pragma once

#include <string>

#include "cli/Picture.h"

namespace Cli {

/// Reads an OpenEXR picture in full float: R, G, B or a single Y, scan lines or the full-size level of tiles,
/// the first part of several, the whole data window. Other channels (alpha, depth) are left out. Primaries
/// come from the chromaticities attribute. Throws cFailure.
sPicture ReadExr(const std::string& pFile);

}  // namespace Cli
