#pragma once

#include <string>

#include "cli/help/HelpPage.h"

namespace Tool {

/// Scripts that let a shell complete verbs, options, their values, names of presets, and files.
std::string MakeBashCompletion(const sHelpPage& pProgram);
std::string MakeZshCompletion(const sHelpPage& pProgram);
std::string MakeFishCompletion(const sHelpPage& pProgram);

}  // namespace Tool
