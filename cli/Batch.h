#pragma once

#include "cli/BatchOptions.h"

namespace Cli {

/// Plans and does the whole run, and tells of it. One picture is done in this process, several in worker
/// processes. Returns the exit code; throws cFailure for what is wrong with the call as a whole.
int RunBatch(const sBatchOptions& pOptions);

}  // namespace Cli
