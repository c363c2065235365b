#pragma once

#include "engine/base/StageFlags.h"
#include "engine/stages/StageLog.h"

namespace TmEngine {

/// What the stages of one call of Render share: the caller's flags, and the log. Stages poll the request to
/// stop; routines that stop early return false, and the renderer's stage that called them reports it.
struct sStageRun {
  const bool* fCancel = nullptr;  ///< The request, which another thread may set at any time; null: never.
  bool* fAborted = nullptr;       ///< Not null where Abort or Stops is called.
  cStageLog fLog = cStageLog(false);

  /// Whether a stage has stopped early, in this call or, where the caller left the flag set, in one before.
  bool IsAborted() const { return IsSet(fAborted); }
  /// Reports to the caller of Render that a stage has stopped early.
  void Abort() const { SetFlag(fAborted); }
  /// Whether to stop; if so, reports it.
  bool Stops() const {
    if (!IsSet(fCancel)) return false;
    Abort();
    return true;
  }
};

}  // namespace TmEngine
