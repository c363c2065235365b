#pragma once

#include <string>
#include <vector>

namespace Tool {

/// Writes the warnings about pFile to standard error, a line each.
void PrintWarnings(const std::string& pFile, const std::vector<std::string>& pWarnings);

}  // namespace Tool
