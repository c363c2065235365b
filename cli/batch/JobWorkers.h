#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "cli/batch/BatchOptions.h"
#include "cli/batch/workers/WorkerPool.h"
#include "cli/terminal/Progress.h"
#include "photo/TonemapPicture.h"

namespace Tool {

using tJobs = std::vector<Photo::sTonemapJob>;
using tJobWork = std::function<std::string(const Photo::sTonemapJob& pJob)>;

/// What each worker does when it begins: libvips starts there, never in the parent. Then it does pWork with
/// the jobs, whose memory gate asks the parent. pJobs and what pWork refers to must outlive the workers.
tTaskMaker MakeTaskMaker(const tJobs& pJobs, std::int64_t pMemory, int pWorkers, const tJobWork& pWork);

/// As many as asked for, as long as there are pictures and file handles for them.
int ChooseWorkers(const sBatchOptions& pOptions, std::size_t pPictures, cProgress& pProgress);

}  // namespace Tool
