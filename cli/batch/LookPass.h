#pragma once

#include <cstdint>

#include "cli/batch/BatchPlan.h"
#include "cli/batch/JobWorkers.h"
#include "cli/terminal/Progress.h"

namespace Tool {

/// Gives pJobs the look that they are to share, where one is asked for: from a file, or found by looking at
/// the pictures first, and writes it into a file where that is asked for. Pictures that cannot be read are
/// left to the run itself. Returns false when the look at them was interrupted. Throws cFailure.
bool SettleLook(const sBatchOptions& pOptions, const sBatchPlan& pPlan, std::int64_t pMemory,
                cProgress& pProgress, tJobs& pJobs);

}  // namespace Tool
