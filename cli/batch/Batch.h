#pragma once

#include "cli/batch/BatchOptions.h"

namespace Cli {

/// Plans and does the whole run, and tells of it. Pictures are done in worker processes: this one opens none,
/// so that it outlives them all. Returns the exit code; throws cFailure for what is wrong with the call as a
/// whole.
int RunBatch(const sBatchOptions& pOptions);

}  // namespace Cli
