#pragma once

#include <string>

#include "photo/render/CurvePoints.h"

namespace Cli {

/// The curves over the hue circle, as SVG text: hues as the engine counts them, with their colours below.
std::string DrawHueCurves(const sHueCurveOptions& pCurves);

}  // namespace Cli
