#pragma once

#include <string>

#include "cli/terminal/Terminal.h"
#include "photo/picture/PictureStatistics.h"

namespace Tool {

/// The distribution of luminance as lines of text, bright ones first: the logarithm at which a line begins, a
/// bar and the per cent of the pixels. Dark outliers share the last line. Empty for a picture without
/// light.
std::string DrawTextHistogram(const Photo::sPictureStatistics& pStatistics, const sTerminal& pTerminal);

}  // namespace Tool
