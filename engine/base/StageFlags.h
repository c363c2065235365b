#pragma once

namespace TmEngine {

// Flags that two threads share: atomic, so that a stage sees what another thread sets while it runs.

/// A null flag is never set.
inline bool IsSet(const bool* pFlag) {
  return pFlag != nullptr && __atomic_load_n(pFlag, __ATOMIC_RELAXED);
}

inline void SetFlag(bool* pFlag) {
  __atomic_store_n(pFlag, true, __ATOMIC_RELAXED);
}

}  // namespace TmEngine
