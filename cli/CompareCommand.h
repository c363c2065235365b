#pragma once

namespace CLI {
class App;
}

namespace Tool {

/// Adds the verb `compare` to the program; the parser runs it. It throws cFailure.
void AddCompareCommand(CLI::App& pProgram);

}  // namespace Tool
