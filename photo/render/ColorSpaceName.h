#pragma once

#include "engine/color/cColorSpace.h"

namespace Photo {

/// What options and stored settings call the colour spaces of a result.
struct sColorSpaceName {
  const char* fName;
  TmEngine::eColorSpaceID fColorSpace;
};
inline constexpr sColorSpaceName kColorSpaceNames[] = {{"srgb", TmEngine::eColorSpaceID_sRGB},
                                                       {"adobergb", TmEngine::eColorSpaceID_AdobeRGB98},
                                                       {"prophoto", TmEngine::eColorSpaceID_ProPhotoRGB}};

}  // namespace Photo
