#pragma once

#include <string>

#include "cli/help/HelpPage.h"

namespace Tool {

/// The manual page (roff, section 1) of the program or of one of its verbs. pProgram: the program's own page,
/// whose exit codes hold for all. pVersion: "1.0.0".
std::string MakeManPage(const sHelpPage& pProgram, const sHelpPage& pPage, const std::string& pVersion);

/// "quorvane" and "quorvane-tonemap".
std::string GetManName(const sHelpPage& pPage);

}  // namespace Tool
