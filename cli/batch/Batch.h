#pragma once

#include "cli/batch/BatchOptions.h"

namespace Tool {

/// Plans, does and reports the whole run. Pictures are done in worker processes: this one opens none,
/// so that it outlives them all. Returns the exit code; throws cFailure for what is wrong with the call as a
/// whole.
int RunBatch(const sBatchOptions& pOptions);

}  // namespace Tool
