#pragma once

#include <string>

#include "engine/cTmRenderer.h"
#include "photo/picture/PictureStatistics.h"

namespace Tool {

/// What the renderer made of a picture, as SVG text: the distribution of its luminance, the curves of the
/// base and the detail layer, and the tone curve. pName: of the picture, for the title. pSettings: a line
/// that lists the sliders.
std::string DrawToneFigure(const std::string& pName, const std::string& pSettings,
                           const Photo::sPictureStatistics& pStatistics,
                           const TmEngine::cTmRenderer& pRenderer);

}  // namespace Tool
