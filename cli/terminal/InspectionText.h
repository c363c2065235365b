#pragma once

#include <string>

#include "cli/terminal/Terminal.h"
#include "photo/Inspection.h"

namespace Tool {

/// What was found in a picture, for people, with a histogram.
std::string DescribeInspection(const Photo::sInspection& pInspection, const sTerminal& pTerminal);

/// The sliders that differ from their defaults, as options to type: "--strength 86 --contrast 10"; "" for
/// none.
std::string ToOptions(const Photo::sSettings& pSettings);

}  // namespace Tool
