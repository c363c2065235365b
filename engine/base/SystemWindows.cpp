#include <immintrin.h>

#include <algorithm>
#include <cfenv>
#include <cstdio>

#include "engine/base/System.h"

namespace TmEngine {

// Large pages take a privilege that programs do not have: memory comes from malloc.
void AdviseLargePages(void* /*pBlock*/, std::size_t /*pBytes*/) {}

char* MapLargePages(std::size_t /*pBytes*/) {
  return nullptr;
}

void UnmapLargePages(char* /*pStart*/, std::size_t /*pBytes*/) {}

// The C library leaves the control register of vector instructions as it is.

sFloatingPoint GetFloatingPoint() {
  sFloatingPoint state = {};
  std::fegetenv(&state.fState);
  state.fVectors = _mm_getcsr();
  return state;
}

void SetFloatingPoint(const sFloatingPoint& pState) {
  std::fesetenv(&pState.fState);
  _mm_setcsr(pState.fVectors);
}

void SetDefaultFloatingPoint() {
  constexpr unsigned kNoTraps = 0x1F80;
  std::fesetenv(FE_DFL_ENV);
  _mm_setcsr(kNoTraps);
}

/// In one write: the C library prints each character on its own, so that lines of threads would mix.
void PrintToStandardError(const char* pFormat, std::va_list pArguments) {
  char text[1024];  // several times what the longest line has
  const int length = std::vsnprintf(text, sizeof text, pFormat, pArguments);
  if (length > 0) std::fwrite(text, 1, std::min(static_cast<std::size_t>(length), sizeof text - 1), stderr);
}

}  // namespace TmEngine
