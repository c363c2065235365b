#pragma once

namespace TmEngine {

/// Reads a flag that another thread may set while a stage runs. A null flag is never set.
inline bool IsSet(const bool* pFlag) {
  return pFlag != nullptr && __atomic_load_n(pFlag, __ATOMIC_RELAXED);
}

/// Tells the caller of a stage that it stopped early.
inline void SetAborted(bool* pAborted) {
  __atomic_store_n(pAborted, true, __ATOMIC_RELAXED);
}

/// Polls the cancel request; when it is set, sets the aborted flag and tells the stage to stop.
inline bool StopRequested(const bool* pCancel, bool* pAborted) {
  if (!IsSet(pCancel)) return false;
  SetAborted(pAborted);
  return true;
}

}  // namespace TmEngine
