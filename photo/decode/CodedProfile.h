#pragma once

#include <string>

#include "photo/light/CicpColors.h"

namespace Photo {

/// An ICC profile of such colours, which must not go beyond white. Empty where none can be made. The same
/// colours give the same bytes.
std::string MakeProfile(const sCicpColors& pColors);

}  // namespace Photo
