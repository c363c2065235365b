#pragma once

#include "photo/picture/PictureStatistics.h"
#include "photo/render/Settings.h"

namespace Photo {

/// Sliders for a picture of such light; docs/auto.md explains the rule. What the rule does not set keeps its
/// default, as does all of it for a picture of one luminance.
sSettings SuggestSettings(const sPictureStatistics& pStatistics);

}  // namespace Photo
