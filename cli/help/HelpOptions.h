#pragma once

namespace CLI {
class App;
}

namespace Cli {

/// Makes pProgram's help, and that of all verbs that are added later, and lets the program print or write the
/// pages and scripts that are made of the same texts.
void AddHelpOptions(CLI::App& pProgram);

}  // namespace Cli
