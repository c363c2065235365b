#pragma once

#include "engine/base/cException.h"

/// Argument checks. A source file that uses them names itself once, and each checked function its signature:
///
///   static constexpr char kSourceFile[] = ".\\cBitmapXYZ32.cpp";           // at the top of the file
///   static constexpr char kSignature[] = "void __cdecl TmEngine::...(int)";  // first in the function
///   TM_CHECK(pWidth > 0, cArgumentException, "Argument pWidth must be greater than zero.");
///
/// The signature is a literal because compilers spell the pretty-function form differently.

namespace TmEngine {

/// Where a check is made: what an exception reports about its origin.
struct sThrowPlace {
  const char* fFunction;
  const char* fFile;
  int fLine;
};

// The throws are out of line, one function per class, so that checked code stays small.
[[noreturn]] void Throw_cArgumentException(const char* pMessage, const sThrowPlace& pPlace);
[[noreturn]] void Throw_cArgumentNullException(const char* pMessage, const sThrowPlace& pPlace);
[[noreturn]] void Throw_cInvalidOperationException(const char* pMessage, const sThrowPlace& pPlace);
[[noreturn]] void Throw_cOutOfMemoryException(const char* pMessage, const sThrowPlace& pPlace);

}  // namespace TmEngine

/// The place of the line that uses it, for a helper that makes a group of checks in its caller's name.
#define TM_HERE (::TmEngine::sThrowPlace{kSignature, kSourceFile, __LINE__})

/// Throws pException (a class name of this namespace) with pMessage, in the name of pPlace.
#define TM_CHECK_AT(pPlace, pCondition, pException, pMessage)            \
  do {                                                                   \
    if (!(pCondition)) ::TmEngine::Throw_##pException(pMessage, pPlace); \
  } while (false)

/// Throws pException with pMessage unless pCondition holds.
#define TM_CHECK(pCondition, pException, pMessage) TM_CHECK_AT(TM_HERE, pCondition, pException, pMessage)

/// TM_CHECK with a fixed line number, for checks that hosts know by their line.
#define TM_CHECK_LINE(pLine, pCondition, pException, pMessage) \
  TM_CHECK_AT((::TmEngine::sThrowPlace{kSignature, kSourceFile, pLine}), pCondition, pException, pMessage)
