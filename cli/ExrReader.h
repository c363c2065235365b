#pragma once

#include <string>

#include "cli/Picture.h"

namespace Cli {

/// Opens an OpenEXR picture, whose rows are read in full float: of several parts the first one with colours,
/// which are R, G, B or a single Y, stored in lines or tiles (the level of full size), the whole data window.
/// Primaries come from the chromaticities attribute. Alpha (A) is kept, and what it was multiplied into is
/// undone for 0 < A < 1; where A is 0, colours stay as they are. Other channels (depth) are left out. Throws
/// cFailure.
sPicture OpenExr(const std::string& pFile);

}  // namespace Cli
