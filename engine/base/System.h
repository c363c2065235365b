#pragma once

#include <cfenv>
#include <cstdarg>
#include <cstddef>

// What the engine takes from the operating system. Every system has a file of its own with all of it,
// SystemNAME.cpp; the build chooses one.

namespace TmEngine {

inline constexpr std::size_t kLargePage = std::size_t{1} << 21;

/// Asks for large pages below a block that has not been written to. A hint: nothing shows whether it is met.
void AdviseLargePages(void* pBlock, std::size_t pBytes);

/// pBytes of cleared memory that begins where a large page does; null where the system has none. pBytes:
/// whole large pages. Released with UnmapLargePages.
char* MapLargePages(std::size_t pBytes);
void UnmapLargePages(char* pStart, std::size_t pBytes);

/// The floating-point environment of a thread: control bits and status flags.
struct sFloatingPoint {
  std::fenv_t fState;
  unsigned fVectors;  ///< those of vector instructions, where fState leaves them out
};
sFloatingPoint GetFloatingPoint();
void SetFloatingPoint(const sFloatingPoint& pState);

/// Round to nearest, no traps, denormal numbers kept.
void SetDefaultFloatingPoint();

/// Writes formatted text to standard error, and gives up where that fails: see LogLine.
void PrintToStandardError(const char* pFormat, std::va_list pArguments);

}  // namespace TmEngine
