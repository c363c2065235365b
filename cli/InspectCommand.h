#pragma once

namespace CLI {
class App;
}

namespace Tool {

/// Adds the verb `inspect` to the program; the parser runs it. It throws cFailure.
void AddInspectCommand(CLI::App& pProgram);

}  // namespace Tool
