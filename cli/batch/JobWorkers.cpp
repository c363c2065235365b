#include "cli/batch/JobWorkers.h"

#include <algorithm>
#include <cstdlib>
#include <thread>

#include "cli/batch/MemoryBudget.h"
#include "cli/batch/VipsSession.h"
#include "photo/MemoryEstimate.h"
#include "photo/io/VipsLibrary.h"

namespace Tool {
namespace {

int CountCores() {
  return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

std::int64_t EstimateFor(const Photo::sTonemapJob& pJob, std::int64_t pPixels) {
  return Photo::EstimateMemory(pPixels, Photo::ChooseJobFormat(pJob), pJob.fResult.fDepth);
}

}  // namespace

tTaskMaker MakeTaskMaker(const tJobs& pJobs, std::int64_t pMemory, int pWorkers, const tJobWork& pWork) {
  return [&pJobs, pMemory, pWorkers, pWork](const tAskForMemory& pAsk) -> tTask {
    static const cVipsSession library;
    if (std::getenv("VIPS_CONCURRENCY") == nullptr) {
      Photo::SetVipsThreads(std::max(1, CountCores() / pWorkers));  // the workers share the cores
    }
    return [&pJobs, pMemory, pAsk, pWork](std::size_t pTask) {
      Photo::sTonemapJob job = pJobs[pTask];
      job.fMemoryGate = [&](std::int64_t pPixels) {
        const std::int64_t bytes = EstimateFor(pJobs[pTask], pPixels);
        CheckMemoryLimit(bytes, pMemory);
        pAsk(bytes);
      };
      return pWork(job);
    };
  };
}

int ChooseWorkers(const sBatchOptions& pOptions, std::size_t pPictures, cProgress& pProgress) {
  const int asked = pOptions.fWorkers > 0 ? pOptions.fWorkers : CountCores();
  const int useful = static_cast<int>(std::min(static_cast<std::size_t>(asked), pPictures));
  const int possible = CountPossibleWorkers();
  if (possible >= useful) return useful;
  pProgress.Warn("pictures at a time: " + std::to_string(possible) + ", not " + std::to_string(useful) +
                 ", as the limit of open files (ulimit -n) is low");
  return possible;
}

}  // namespace Tool
