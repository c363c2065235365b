#pragma once

#include <string>

#include "cli/help/HelpPage.h"

namespace Tool {

/// What --help prints: at most 96 columns, but for lines that stay as they are.
std::string MakeHelpText(const sHelpPage& pPage);

}  // namespace Tool
