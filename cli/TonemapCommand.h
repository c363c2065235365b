#pragma once

namespace CLI {
class App;
}

namespace Cli {

/// Adds the verb `tonemap` to the program; the parser runs it. It throws cFailure.
void AddTonemapCommand(CLI::App& pProgram);

}  // namespace Cli
