#pragma once

namespace CLI {
class App;
}

namespace Tool {

/// Adds the verb `tonemap` to the program; the parser runs it. It throws cFailure.
void AddTonemapCommand(CLI::App& pProgram);

}  // namespace Tool
