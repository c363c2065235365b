#pragma once

#include <string>

#include "photo/render/CurvePoints.h"

namespace Tool {

/// The curves over the hue circle, as SVG text: hues as the engine counts them, with their colours below.
std::string DrawHueCurves(const Photo::sHueCurveOptions& pCurves);

}  // namespace Tool
