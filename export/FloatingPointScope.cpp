#include "export/FloatingPointScope.h"

#include "engine/base/System.h"

cFloatingPointScope::cFloatingPointScope() {
  std::fegetenv(&fHost);
  TmEngine::ResetFloatingPoint();
}

cFloatingPointScope::~cFloatingPointScope() {
  std::fesetenv(&fHost);
}
