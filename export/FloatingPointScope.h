#pragma once

#include "engine/base/System.h"

/// Gives its thread the default floating-point environment while it lives: round to nearest, no traps,
/// denormal numbers kept. Then the host's comes back as it was, control bits and status flags alike.
///
/// Both ends are out of line. A compiler may move arithmetic across calls, but not what it loads from
/// memory or stores there: make the scope before the first number is read from the host.
class cFloatingPointScope {
 public:
  cFloatingPointScope();
  cFloatingPointScope(const cFloatingPointScope&) = delete;
  cFloatingPointScope& operator=(const cFloatingPointScope&) = delete;
  ~cFloatingPointScope();

 private:
  TmEngine::sFloatingPoint fHost;
};
