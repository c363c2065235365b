#pragma once

#include <string>
#include <vector>

#include "cli/batch/BatchOptions.h"

namespace Tool {

/// Refuses a call that does not say what to do, or says things that exclude each other. Throws cFailure.
void CheckBatch(const sBatchOptions& pOptions);

/// A name that ends as those of the run's targets do.
std::string NameAnyTarget(const sBatchOptions& pOptions);

struct sBatchPlan {
  std::vector<Photo::sTonemapJob> fJobs;  ///< In the order of the sorted list.
  std::vector<Photo::sTonemapJob> fSet;   ///< Those and the ones of all other shards.
  sLeftOut fLeftOut;
  std::vector<sUnreadableFolder> fUnreadable;
};

/// Every picture of the run with its target. What is wrong with the call as a whole - two inputs for one
/// target, results that would replace inputs - is refused here, before any work. Throws cFailure.
sBatchPlan PlanBatch(const sBatchOptions& pOptions);

}  // namespace Tool
