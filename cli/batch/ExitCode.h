#pragma once

#include "photo/base/Failure.h"

namespace Cli {

/// What the program returns to its caller.
enum eExitCode : int {
  eExitCode_Done = 0,
  eExitCode_PictureFailed = 1,  ///< One or more pictures of several failed.
  eExitCode_Usage = 2,
  eExitCode_CannotRead = 3,
  eExitCode_CannotWrite = 4,
  eExitCode_Processing = 5,
  eExitCode_Interrupted = 130,
};

constexpr eExitCode GetExitCode(eFailure pFailure) {
  switch (pFailure) {
    case eFailure::kSomePictures:
      return eExitCode_PictureFailed;
    case eFailure::kUsage:
      return eExitCode_Usage;
    case eFailure::kCannotRead:
      return eExitCode_CannotRead;
    case eFailure::kCannotWrite:
      return eExitCode_CannotWrite;
    case eFailure::kProcessing:
      break;
  }
  return eExitCode_Processing;
}

}  // namespace Cli
