#pragma once

#include <string>

#include "engine/color/cColorSpace.h"
#include "engine/math/cMatrix33.h"
#include "photo/light/LinearLight.h"

namespace Python {

/// What samples of floats mean, by the name of their space. Throws ValueError for an unknown name.
Photo::sLinearLight GetLight(const std::string& pName);
/// From D50-relative XYZ to the space's samples.
TmEngine::cMatrix33 GetFromXYZ(const std::string& pName);

/// The colour space of integer samples, by its name. Throws ValueError for an unknown name.
TmEngine::eColorSpaceID GetColorSpace(const std::string& pName);

}  // namespace Python
