#pragma once

#include "photo/base/Failure.h"

namespace Tool {

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

constexpr eExitCode GetExitCode(Photo::eFailure pFailure) {
  switch (pFailure) {
    case Photo::eFailure::kSomePictures:
      return eExitCode_PictureFailed;
    case Photo::eFailure::kUsage:
      return eExitCode_Usage;
    case Photo::eFailure::kCannotRead:
      return eExitCode_CannotRead;
    case Photo::eFailure::kCannotWrite:
      return eExitCode_CannotWrite;
    case Photo::eFailure::kProcessing:
      break;
  }
  return eExitCode_Processing;
}

}  // namespace Tool
