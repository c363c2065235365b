#pragma once

#include <cstdint>
#include <string>

#include "cli/batch/InputList.h"
#include "cli/terminal/Progress.h"
#include "photo/TonemapPicture.h"

namespace CLI {
class App;
}

namespace Tool {

/// Whether the pictures of a run share their look, and where it comes from.
struct sLookOptions {
  bool fIsSame = false;  ///< All of the run.
  std::string fFrom;     ///< A picture, or a file that holds a look; empty for none.
  std::string fSaveAs;   ///< A file to write the look of all into; empty for none.
};

/// One run of the verb: which pictures, where to, and how many at a time. What becomes of a target that
/// exists is up to sTonemapJob.
struct sBatchOptions {
  sInputNames fInputs;
  std::string fOutput;  ///< Of a single picture; "-" for standard output.
  std::string fOutputFolder;
  std::string fName = "{stem}_tm.{ext}";
  std::string fFormat;  ///< A file extension without its point; "" for png, or what fOutput ends in.
  int fShard = 1;       ///< Pictures fShard, fShard + fShards, ... of the sorted list.
  int fShards = 1;
  sLookOptions fLook;
  int fWorkers = 0;               ///< 0 for the number of cores.
  std::int64_t fMemoryLimit = 0;  ///< Bytes; 0 for a share of what is available.
  double fTimeout = 0.0;          ///< Seconds for a picture; 0 for no limit.
  bool fFailFast = false;
  bool fDryRun = false;
  bool fJson = false;
  eProgress fProgress = eProgress::kAuto;
  Photo::sTonemapJob fJob;  ///< What all pictures share; input and output are not set.
};

/// The record must outlive the parsing.
void AddBatchOptions(CLI::App& pVerb, sBatchOptions& pOptions);

}  // namespace Tool
