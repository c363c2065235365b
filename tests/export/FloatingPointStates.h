#pragma once

#include <array>
#include <cfenv>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

/// Control bits and status flags of the calling thread.
struct sFloatingPoint {
  std::array<unsigned, 3> fWords = {};
  int fRounding = std::fegetround();
  int fRaised = std::fetestexcept(FE_ALL_EXCEPT);
  bool operator==(const sFloatingPoint&) const = default;

  static sFloatingPoint Current() {
    sFloatingPoint state;
#if defined(__x86_64__)
    unsigned short control = 0, status = 0;
    __asm__ volatile("fnstcw %0\n\tfnstsw %1" : "=m"(control), "=m"(status));
    state.fWords = {_mm_getcsr(), control, status};
#elif defined(__aarch64__)
    unsigned long control = 0, status = 0;
    __asm__ volatile("mrs %0, fpcr\n\tmrs %1, fpsr" : "=r"(control), "=r"(status));
    state.fWords = {static_cast<unsigned>(control), static_cast<unsigned>(status), 0};
#endif
    return state;
  }
};

inline void FlushDenormals() {
#if defined(__x86_64__)
  _mm_setcsr(_mm_getcsr() | 0x8040);  // flush to zero, denormals are zero
#elif defined(__aarch64__)
  unsigned long control = 0;
  __asm__ volatile("mrs %0, fpcr" : "=r"(control));
  __asm__ volatile("msr fpcr, %0" : : "r"(control | (1ul << 24)));
#endif
}

struct sState {
  const char* fName;
  void (*fSet)();
};

inline void BackToDefault() {
  std::fesetenv(FE_DFL_ENV);
#if defined(__x86_64__)
  _mm_setcsr(0x1F80);  // some C libraries leave it as it is
#endif
}

/// Whether the call left the thread's state as it was.
template <class tCall>
bool KeepsState(const sState& pState, const tCall& pCall) {
  BackToDefault();
  pState.fSet();
  const sFloatingPoint before = sFloatingPoint::Current();
  pCall();
  const sFloatingPoint after = sFloatingPoint::Current();
  BackToDefault();
  return before == after;
}
