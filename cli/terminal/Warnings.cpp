#include "cli/terminal/Warnings.h"

#include "cli/terminal/Console.h"

namespace Tool {

void PrintWarnings(const std::string& pFile, const std::vector<std::string>& pWarnings) {
  const std::string start = "quorvane: " + pFile + ": warning: ";
  for (const std::string& warning : pWarnings) PrintMessage(std::string(start).append(warning));
}

}  // namespace Tool
