#pragma once

#include <string>

#include "cli/CurvePoints.h"
#include "cli/TempFile.h"

namespace Cli {

/// What a drawing is written as.
enum class ePlotFormat { kSvg, kPng };

/// The format that the ending of the name asks for. Throws cFailure.
ePlotFormat ChoosePlotFormat(const std::string& pFile);

/// The curves over the hue circle, as SVG text: hues as the engine counts them, with their colours below.
std::string DrawHueCurves(const sHueCurveOptions& pCurves);

/// Writes the drawing and lets the file take its target's place. libvips must be running. Throws cFailure.
void WritePlot(const std::string& pSvg, ePlotFormat pFormat, cTempFile& pFile);

}  // namespace Cli
