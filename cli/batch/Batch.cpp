#include "cli/batch/Batch.h"

#include <exception>
#include <nlohmann/json.hpp>

#include "cli/batch/BatchPlan.h"
#include "cli/batch/ExitCode.h"
#include "cli/batch/Interrupt.h"
#include "cli/batch/JobWorkers.h"
#include "cli/batch/LookPass.h"
#include "cli/batch/MemoryBudget.h"
#include "cli/batch/PictureTask.h"
#include "cli/batch/StandardStreams.h"
#include "cli/batch/workers/WorkerPool.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/FailureText.h"
#include "cli/terminal/Progress.h"
#include "photo/Json.h"
#include "photo/PictureRecord.h"
#include "photo/base/Failure.h"
#include "photo/decode/FileKind.h"
#include "photo/io/TempFile.h"

namespace Tool {
namespace {

/// Takes the record of each picture, and knows the exit code in the end.
class cReport {
 public:
  cReport(const sBatchOptions& pOptions, const sBatchPlan& pPlan)
      : fJson(pOptions.fJson),
        fIsSingle(pPlan.fJobs.size() == 1 && pPlan.fUnreadable.empty()),
        fIsRecursive(pOptions.fInputs.fRecursive),
        fProgress(ChooseProgress(pOptions.fProgress, pPlan.fJobs.size() == 1 && !fIsRecursive),
                  pPlan.fJobs.size(), fIsRecursive ? &pPlan.fLeftOut : nullptr) {
    for (const sUnreadableFolder& folder : pPlan.fUnreadable) {
      Write(MakeFolderRecord(folder));
      fProgress.NoteFolder(folder);
      fExitCode = eExitCode_PictureFailed;
    }
  }

  void Add(const Photo::sTonemapJob& pJob, const Photo::tPictureRecord& pRecord) {
    Write(pRecord);
    fProgress.Report(pJob, pRecord);
    if (!pRecord.contains("error")) return;
    const int code = pRecord["error"]["code"];
    fExitCode = fIsSingle ? code : eExitCode_PictureFailed;
  }

  /// Returns the exit code. Throws what kept standard output from taking all objects.
  int Finish() {
    if (fIsRecursive) Write(fProgress.MakeSummary());
    fProgress.Finish();
    if (fOutputFault) std::rethrow_exception(fOutputFault);
    return fExitCode;
  }

  cProgress& GetProgress() { return fProgress; }
  /// Whether another picture would make things worse: it would not be in the report.
  bool HasLostOutput() const { return fOutputFault != nullptr; }

 private:
  static Photo::tPictureRecord MakeFolderRecord(const sUnreadableFolder& pFolder) {
    Photo::sTonemapJob job;
    job.fInput = pFolder.fFolder;
    Photo::tPictureRecord record =
        Photo::MakeFailedRecord(job, Photo::eFailure::kCannotRead, pFolder.fFolder + ": " + pFolder.fReason);
    record.erase("output");
    return record;
  }

  void Write(const Photo::tPictureRecord& pRecord) {
    if (!fJson || HasLostOutput()) return;
    try {
      Print(Photo::ToLine(pRecord) + "\n");
    } catch (...) {
      fOutputFault = std::current_exception();
    }
  }

  bool fJson;
  bool fIsSingle;
  bool fIsRecursive;
  cProgress fProgress;
  int fExitCode = eExitCode_Done;
  std::exception_ptr fOutputFault;
};

/// What would keep a picture from being done, as far as it shows before the work; "" for nothing.
std::string FindObstacle(const Photo::sTonemapJob& pJob) {
  try {
    // a stream could not be read again
    if (!IsStream(pJob.fInput))
      Photo::NameFile(pJob.fInput, [&] { return Photo::DetectFileKind(pJob.fInput); });
    if (pJob.fExisting == Photo::eExisting::kRefuse && Photo::HasTarget(pJob))
      Photo::NameFile(pJob.fOutput, [] { Photo::RefuseExisting(); });
    return "";
  } catch (const Photo::cFailure& failure) {
    return DescribeFailure(failure);
  }
}

int ShowPlan(const sBatchPlan& pPlan) {
  bool hasObstacles = !pPlan.fUnreadable.empty();
  for (const Photo::sTonemapJob& job : pPlan.fJobs) {
    const bool isSkipped = job.fExisting == Photo::eExisting::kSkip && Photo::HasTarget(job);
    const std::string obstacle = isSkipped ? "" : FindObstacle(job);
    hasObstacles = hasObstacles || !obstacle.empty();
    const std::string note = isSkipped          ? " (skipped: exists)"
                             : obstacle.empty() ? ""
                                                : " (refused: " + obstacle + ")";
    Print(NameForOutput(job.fInput) + " -> " + NameForOutput(job.fOutput) + NameForOutput(note) + "\n");
  }
  for (const sUnreadableFolder& folder : pPlan.fUnreadable) {
    PrintMessage("quorvane: " + folder.fFolder + ": " + folder.fReason);
  }
  if (const std::string leftOut = DescribeLeftOut(pPlan.fLeftOut); !leftOut.empty()) {
    PrintMessage("left out: " + leftOut);
  }
  return hasObstacles ? eExitCode_PictureFailed : eExitCode_Done;
}

/// What a worker that was ended left behind.
void RemoveLeftovers(const Photo::sTonemapJob& pJob) {
  if (pJob.fOutput != kStandardStream) Photo::cTempFile::RemoveLeftovers(pJob.fOutput);
}

/// A worker that ends because the whole run is interrupted is no failure of its picture.
void ReportEnd(const tJobs& pJobs, const sTaskEnd& pEnd, bool pIsInterrupted, cReport& pReport) {
  const Photo::sTonemapJob& job = pJobs[pEnd.fTask];
  if (pEnd.fIsAnswered) return pReport.Add(job, Photo::FromLine(pEnd.fText));
  RemoveLeftovers(job);
  if (pIsInterrupted) return;
  pReport.Add(job,
              Photo::MakeFailedRecord(job, Photo::eFailure::kProcessing, job.fInput + ": " + pEnd.fText));
}

/// Returns whether the run was interrupted.
bool RunJobs(cWorkerPool& pPool, const tJobs& pJobs, bool pFailFast, cReport& pReport) {
  const cInterruptWatch interrupt;
  const int tick = pReport.GetProgress().HasBar() ? 250 : -1;
  for (std::size_t next = 0;;) {
    const bool isOver =
        next == pJobs.size() || pReport.HasLostOutput() || (pFailFast && pReport.GetProgress().HasFailed());
    if (isOver && !pPool.IsBusy()) return false;
    if (!isOver && pPool.HasRoom()) {
      const std::optional<std::string> fault = pPool.Begin(next);
      if (fault) pReport.GetProgress().Warn("working with fewer processes than asked for: " + *fault);
      next += fault ? 0 : 1;
      continue;
    }
    const auto end = pPool.Wait(interrupt.GetHandle(), tick);
    const bool isInterrupted = interrupt.HasCome();
    if (end) ReportEnd(pJobs, *end, isInterrupted, pReport);
    if (isInterrupted) return true;
    pReport.GetProgress().Draw();
  }
}

/// Returns whether the run was interrupted. Nothing that was in work then is left behind.
bool DoInWorkers(const tJobs& pJobs, const sBatchOptions& pOptions, std::int64_t pMemory, cReport& pReport) {
  const int workers = ChooseWorkers(pOptions, pJobs.size(), pReport.GetProgress());
  std::vector<std::size_t> givenUp;
  bool isInterrupted = false;
  {
    const auto work = [](const Photo::sTonemapJob& pJob) { return Photo::ToLine(RunPictureTask(pJob)); };
    cWorkerPool pool({workers, pMemory, pOptions.fTimeout}, MakeTaskMaker(pJobs, pMemory, workers, work));
    isInterrupted = RunJobs(pool, pJobs, pOptions.fFailFast, pReport);
    givenUp = pool.GetTasksInWork();
  }
  for (const std::size_t task : givenUp) RemoveLeftovers(pJobs[task]);
  return isInterrupted;
}

}  // namespace

int RunBatch(const sBatchOptions& pOptions) {
  const sBatchPlan plan = PlanBatch(pOptions);
  if (pOptions.fDryRun) return ShowPlan(plan);
  tJobs jobs = plan.fJobs;
  const std::int64_t memory = ChooseMemoryLimit(pOptions.fMemoryLimit);
  cReport report(pOptions, plan);
  const auto interrupt = [&] {
    report.GetProgress().Interrupt(pOptions.fJob.fExisting);
    return eExitCode_Interrupted;
  };
  if (!SettleLook(pOptions, plan, memory, report.GetProgress(), jobs)) return interrupt();
  try {
    if (!jobs.empty() && DoInWorkers(jobs, pOptions, memory, report)) return interrupt();
  } catch (const Photo::cFailure&) {  // no worker can be started any more
    report.Finish();
    throw;
  }
  return report.Finish();
}

}  // namespace Tool
