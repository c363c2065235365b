#include "cli/batch/BatchPlan.h"

#include <unistd.h>

#include <filesystem>
#include <map>
#include <set>
#include <utility>

#include "cli/batch/FileKeys.h"
#include "cli/batch/StandardStreams.h"
#include "cli/batch/TargetName.h"
#include "photo/base/Failure.h"

namespace Tool {
namespace {

struct sPlanned {
  const sInput* fInput;
  std::string fTarget;
  std::string fInputKey;
  std::string fTargetKey;
};

[[noreturn]] void RefuseCall(const std::string& pReason) {
  throw Photo::cFailure(Photo::eFailure::kUsage, "", pReason);
}

void CheckOutput(const sBatchOptions& pOptions) {
  const bool isStream = pOptions.fOutput == kStandardStream;
  if (pOptions.fOutput.empty() && pOptions.fOutputFolder.empty()) {
    RefuseCall("No output given: use -o FILE for one picture, or --out-dir DIR");
  }
  if (!pOptions.fOutput.empty() && !pOptions.fFormat.empty() && !isStream) {
    RefuseCall("--format goes with --out-dir or -o -; the extension of " + pOptions.fOutput +
               " chooses its format");
  }
  if (isStream && pOptions.fJson) RefuseCall("-o - and --json both want standard output");
  if (isStream && isatty(STDOUT_FILENO) != 0) RefuseCall("-o -: a picture is not written to a terminal");
}

void CheckInputs(const sInputNames& pNames) {
  const bool hasStream = !pNames.fNames.empty() && pNames.fNames.front() == kStandardStream;
  if (pNames.fNames.empty() && pNames.fFilesFrom.empty()) RefuseCall("INPUT is required");
  if (hasStream && pNames.fFilesFrom == kStandardStream) {
    RefuseCall("standard input cannot be a picture and --files-from at once");
  }
}

/// The extension of results in a folder, or on standard output.
std::string GetResultExtension(const sBatchOptions& pOptions) {
  return pOptions.fFormat.empty() ? "png" : pOptions.fFormat;
}

std::string ChooseTarget(const sBatchOptions& pOptions, const sInput& pInput, std::size_t pIndex) {
  const std::string name = MakeTargetName(pOptions.fName, pInput.fFile, GetResultExtension(pOptions), pIndex);
  return (std::filesystem::path(pOptions.fOutputFolder) / pInput.fFolder / name).string();
}

std::vector<sPlanned> PairUp(const sBatchOptions& pOptions, const std::vector<sInput>& pInputs) {
  std::vector<sPlanned> pairs;
  cFileKeys keys;
  for (const sInput& input : pInputs) {
    const std::string target =
        pOptions.fOutput.empty() ? ChooseTarget(pOptions, input, pairs.size() + 1) : pOptions.fOutput;
    pairs.push_back({&input, target, keys.Get(input.fFile), keys.Get(target)});
    if (pairs.back().fInputKey == pairs.back().fTargetKey && target != kStandardStream) {
      throw Photo::cFailure(Photo::eFailure::kUsage, target,
                            "is the input itself; give the result another name");
    }
  }
  return pairs;
}

/// Where results lie beside the pictures of a folder, a second run finds them there: they are no inputs.
void LeaveOutResults(std::vector<sPlanned>& pPairs) {
  std::set<std::string> targets;
  for (const sPlanned& pair : pPairs) targets.insert(pair.fTargetKey);
  std::erase_if(pPairs, [&](const sPlanned& pPair) {
    return pPair.fInput->fIsFound && targets.contains(pPair.fInputKey);
  });
}

/// A file that is a picture by its content alone may be a copy of one beside it, such as a.exr_old of a.exr:
/// it does not compete for a result's name. Returns how many give way.
std::size_t LeaveOutCopies(std::vector<sPlanned>& pPairs) {
  std::set<std::string> targets;
  for (const sPlanned& pair : pPairs) {
    if (!pair.fInput->fIsKnownByContent) targets.insert(pair.fTargetKey);
  }
  return std::erase_if(pPairs, [&](const sPlanned& pPair) {
    return pPair.fInput->fIsKnownByContent && !targets.insert(pPair.fTargetKey).second;
  });
}

void CheckTargets(const std::vector<sPlanned>& pPairs) {
  std::map<std::string, const sPlanned*> inputs;
  std::map<std::string, const sPlanned*> targets;
  for (const sPlanned& pair : pPairs) inputs.emplace(pair.fInputKey, &pair);
  for (const sPlanned& pair : pPairs) {
    const std::string& name = pair.fInput->fFile;
    if (inputs.contains(pair.fTargetKey) && pair.fTarget != kStandardStream) {
      RefuseCall("the result of " + name + " would replace the input " + pair.fTarget + "; change --name");
    }
    const auto place = targets.emplace(pair.fTargetKey, &pair);
    if (place.second) continue;
    RefuseCall(place.first->second->fInput->fFile + " and " + name + " would both become " + pair.fTarget +
               "; put {name} or {index} into --name");
  }
}

std::vector<Photo::sTonemapJob> MakeJobs(const sBatchOptions& pOptions, const std::vector<sPlanned>& pPairs) {
  std::vector<Photo::sTonemapJob> jobs;
  for (const sPlanned& pair : pPairs) {
    Photo::sTonemapJob job = pOptions.fJob;
    job.fInput = pair.fInput->fFile;
    job.fOutput = pair.fTarget;
    if (job.fOutput == kStandardStream) job.fOutputStream = STDOUT_FILENO;
    job.fStreamFormat = GetResultExtension(pOptions);
    job.fMakesFolder = !pOptions.fOutputFolder.empty();
    jobs.push_back(std::move(job));
  }
  return jobs;
}

std::vector<Photo::sTonemapJob> TakeShard(const sBatchOptions& pOptions,
                                          const std::vector<Photo::sTonemapJob>& pSet) {
  std::vector<Photo::sTonemapJob> jobs;
  const auto step = static_cast<std::size_t>(pOptions.fShards);
  for (auto i = static_cast<std::size_t>(pOptions.fShard - 1); i < pSet.size(); i += step) {
    jobs.push_back(pSet[i]);
  }
  return jobs;
}

}  // namespace

void CheckBatch(const sBatchOptions& pOptions) {
  CheckInputs(pOptions.fInputs);
  CheckOutput(pOptions);
}

std::string NameAnyTarget(const sBatchOptions& pOptions) {
  if (pOptions.fOutput == kStandardStream) return "result." + GetResultExtension(pOptions);
  return pOptions.fOutput.empty() ? ChooseTarget(pOptions, {"picture", "", false, false}, 1)
                                  : pOptions.fOutput;
}

sBatchPlan PlanBatch(const sBatchOptions& pOptions) {
  const sInputList list = ListInputs(pOptions.fInputs, pOptions.fOutputFolder);
  const std::vector<sInput>& inputs = list.fInputs;
  if (inputs.size() > 1 && !pOptions.fOutput.empty()) {
    RefuseCall("-o is for one picture; give --out-dir DIR for " + std::to_string(inputs.size()));
  }
  std::vector<sPlanned> pairs = PairUp(pOptions, inputs);
  LeaveOutResults(pairs);
  sBatchPlan plan{{}, {}, list.fLeftOut, list.fUnreadable};
  plan.fLeftOut.fUnknown += LeaveOutCopies(pairs);
  CheckTargets(pairs);
  plan.fSet = MakeJobs(pOptions, pairs);
  plan.fJobs = TakeShard(pOptions, plan.fSet);
  for (const Photo::sTonemapJob& job : plan.fJobs) Photo::ChooseJobFormat(job);
  return plan;
}

}  // namespace Tool
