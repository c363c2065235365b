#pragma once

namespace CLI {
class App;
}

namespace Tool {

/// Adds the verb `equalize` to the program; the parser runs it. It throws cFailure.
void AddEqualizeCommand(CLI::App& pProgram);

}  // namespace Tool
