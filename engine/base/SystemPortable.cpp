#include <cfenv>
#include <cstdio>

#include "engine/base/System.h"

// For systems without a file of their own: the C++ standard library alone.

namespace TmEngine {

void AdviseLargePages(void* /*pBlock*/, std::size_t /*pBytes*/) {}

char* MapLargePages(std::size_t /*pBytes*/) {
  return nullptr;
}

void UnmapLargePages(char* /*pStart*/, std::size_t /*pBytes*/) {}

sFloatingPoint GetFloatingPoint() {
  sFloatingPoint state = {};
  std::fegetenv(&state.fState);
  return state;
}

void SetFloatingPoint(const sFloatingPoint& pState) {
  std::fesetenv(&pState.fState);
}

void SetDefaultFloatingPoint() {
  std::fesetenv(FE_DFL_ENV);
}

void PrintToStandardError(const char* pFormat, std::va_list pArguments) {
  std::vfprintf(stderr, pFormat, pArguments);
}

}  // namespace TmEngine
