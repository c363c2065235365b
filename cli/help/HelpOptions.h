#pragma once

#include <functional>
#include <string>

namespace CLI {
class App;
}

namespace Tool {

/// What pages and scripts say besides the help's texts.
struct sHelpFacts {
  std::function<void(const std::string&)> fPrint;  ///< To standard output.
  std::string fVersion;                            ///< "1.0.0".
  std::function<std::string()> fPresetsForShells;  ///< See ListPresetsForShells.
};

/// Makes pProgram's help, and that of all verbs that are added later, and lets the program print or write the
/// pages and scripts that are made of the same texts.
void AddHelpOptions(CLI::App& pProgram, const sHelpFacts& pFacts);

}  // namespace Tool
