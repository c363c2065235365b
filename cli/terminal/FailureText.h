#pragma once

#include <string>
#include <vector>

#include "photo/base/Failure.h"

namespace Tool {

/// "FILE: REASON", in which the options are named that help.
std::string DescribeFailure(const Photo::cFailure& pFailure);

/// Texts of photo/ with the options that they speak of.
std::vector<std::string> NameOptions(const std::vector<std::string>& pTexts);

}  // namespace Tool
