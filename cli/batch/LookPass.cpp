#include "cli/batch/LookPass.h"

#include <optional>
#include <string>
#include <utility>

#include "cli/batch/Interrupt.h"
#include "cli/batch/LookParts.h"
#include "cli/batch/StandardStreams.h"
#include "cli/batch/workers/WorkerPool.h"
#include "cli/terminal/FailureText.h"
#include "photo/LookFile.h"
#include "photo/SetLook.h"
#include "photo/base/Failure.h"
#include "photo/base/ShortText.h"
#include "photo/io/TempFile.h"

namespace Tool {
namespace {

constexpr char kFound = '+';  // the first character of an answer: what was found follows,
constexpr char kFault = '-';  // or what went wrong

[[noreturn]] void Refuse(const std::string& pFile, const std::string& pReason) {
  throw Photo::cFailure(Photo::eFailure::kUsage, pFile, pReason);
}

std::string Look(const Photo::sTonemapJob& pJob, Photo::eLookStep pStep) {
  try {
    return kFound + LookPartToText(Photo::LookAtPicture(pJob, pStep));
  } catch (const Photo::cFailure& failure) {
    return kFault + DescribeFailure(failure);
  } catch (const std::exception& exception) {
    return kFault + pJob.fInput + ": " + Photo::Shorten(exception.what());
  }
}

/// What a round over all pictures found, each in its place.
struct sRound {
  std::vector<Photo::sLookPart> fParts;
  std::size_t fMissing = 0;  ///< Pictures that could not be looked at.
  std::string fFault;        ///< Of one of them.
  bool fIsInterrupted = false;

  void Take(const sTaskEnd& pEnd) {
    if (pEnd.fIsAnswered && pEnd.fText.front() == kFound) {
      fParts[pEnd.fTask] = LookPartFromText(pEnd.fText.substr(1));
      return;
    }
    ++fMissing;
    fFault = pEnd.fIsAnswered ? pEnd.fText.substr(1) : pEnd.fText;
  }
};

/// Does all tasks, as long as no signal comes.
void DoAll(cWorkerPool& pPool, std::size_t pTasks, cProgress& pProgress, sRound& pRound) {
  const cInterruptWatch interrupt;
  std::size_t next = 0, done = 0;
  while (done < pTasks) {
    if (next < pTasks && pPool.HasRoom()) {
      if (!pPool.Begin(next)) ++next;
      continue;
    }
    const auto end = pPool.Wait(interrupt.GetHandle(), -1);
    if ((pRound.fIsInterrupted = interrupt.HasCome())) return;
    if (!end) continue;
    pRound.Take(*end);
    pProgress.NoteLook(++done, pTasks);
  }
}

sRound LookAtAll(const sBatchOptions& pOptions, const tJobs& pJobs, std::int64_t pMemory,
                 Photo::eLookStep pStep, cProgress& pProgress) {
  sRound round;
  round.fParts.resize(pJobs.size());
  const int workers = ChooseWorkers(pOptions, pJobs.size(), pProgress);
  const auto work = [pStep](const Photo::sTonemapJob& pJob) { return Look(pJob, pStep); };
  cWorkerPool pool({workers, pMemory, pOptions.fTimeout}, MakeTaskMaker(pJobs, pMemory, workers, work));
  DoAll(pool, pJobs.size(), pProgress, round);
  return round;
}

/// The settings of the set; none when it was interrupted.
std::optional<Photo::sSettings> FindLook(const sBatchOptions& pOptions, tJobs pJobs, std::int64_t pMemory,
                                         cProgress& pProgress) {
  Photo::cSetLook look(pOptions.fJob);
  std::size_t missing = 0;
  while (const auto step = look.GetStep()) {
    for (Photo::sTonemapJob& job : pJobs) job.fSettings = look.GetSettings();
    const sRound round = LookAtAll(pOptions, pJobs, pMemory, *step, pProgress);
    if (round.fIsInterrupted) return std::nullopt;
    if (!pOptions.fLook.fFrom.empty() && round.fMissing > 0) {
      throw Photo::cFailure(Photo::eFailure::kCannotRead, "--look-from: " + round.fFault);
    }
    missing = round.fMissing;
    look.Add(round.fParts);
  }
  if (missing > 0) {
    pProgress.Warn("the common look is without " + std::to_string(missing) + " of " +
                   std::to_string(pJobs.size()) + " pictures, which could not be read");
  }
  return look.GetSettings();
}

/// A look is for the sliders that it was found with: others would not go with its points.
void CheckSliders(const sBatchOptions& pOptions, const Photo::sSettings& pLook) {
  const Photo::sSettingsChange has = Photo::ChangeTo(pLook);
  for (std::size_t i = 0; i < has.fSliders.size(); ++i) {
    const std::optional<float>& asked = pOptions.fJob.fChange.fSliders[i];
    if (!asked || asked == has.fSliders[i]) continue;
    const std::string name = std::string("--") + Photo::GetSliders()[i].fName;
    Refuse(pOptions.fLook.fFrom, "is a look with " + name + " " + Photo::ToText(*has.fSliders[i]) + ", and " +
                                     Photo::ToText(*asked) +
                                     " is asked for; leave that out, or find a look with it by --same-look");
  }
}

void CheckCanBeReadTwice(const tJobs& pJobs) {
  for (const Photo::sTonemapJob& job : pJobs) {
    if (!IsStream(job.fInput)) continue;
    Refuse(job.fInput,
           "can be read only once, and --same-look looks at all pictures before the first result; "
           "store it in a file");
  }
}

tJobs ListPicturesToLookAt(const sBatchOptions& pOptions, const sBatchPlan& pPlan) {
  if (pOptions.fLook.fFrom.empty()) return pPlan.fSet;
  tJobs jobs = {pPlan.fSet.front()};
  jobs.front().fInput = pOptions.fLook.fFrom;
  return jobs;
}

/// Whether one picture more or less makes no difference: it is its own set.
bool IsAlone(const sBatchOptions& pOptions, const sBatchPlan& pPlan) {
  return pOptions.fLook.fFrom.empty() && pOptions.fLook.fSaveAs.empty() && pPlan.fSet.size() < 2;
}

void Save(const sBatchOptions& pOptions, const Photo::sSettings& pSettings) {
  const std::string& file = pOptions.fLook.fSaveAs;
  if (file.empty()) return;
  if (!pSettings.fLook) Refuse(file, "not written: no picture has light to take a look from");
  Photo::SaveLook(file, pSettings, pOptions.fJob.fExisting == Photo::eExisting::kReplace);
}

}  // namespace

bool SettleLook(const sBatchOptions& pOptions, const sBatchPlan& pPlan, std::int64_t pMemory,
                cProgress& pProgress, tJobs& pJobs) {
  const sLookOptions& asked = pOptions.fLook;
  if ((!asked.fIsSame && asked.fFrom.empty()) || pPlan.fSet.empty() || IsAlone(pOptions, pPlan)) return true;
  std::optional<Photo::sSettings> settings;
  if (!asked.fFrom.empty()) settings = Photo::LoadLook(asked.fFrom);
  if (settings) {
    CheckSliders(pOptions, *settings);
    settings->fWrap = pOptions.fJob.fSettings.fWrap;
  } else {
    const tJobs pictures = ListPicturesToLookAt(pOptions, pPlan);
    CheckCanBeReadTwice(pictures);
    if (!asked.fSaveAs.empty()) {
      const bool mayReplace = pOptions.fJob.fExisting == Photo::eExisting::kReplace;
      Photo::NameFile(asked.fSaveAs, [&] { Photo::CheckReplacing(asked.fSaveAs, mayReplace); });
    }
    settings = FindLook(pOptions, pictures, pMemory, pProgress);
    if (!settings) return false;
    Save(pOptions, *settings);
  }
  for (Photo::sTonemapJob& job : pJobs) {
    job.fSettings = *settings;
    job.fAuto = false;
  }
  return true;
}

}  // namespace Tool
