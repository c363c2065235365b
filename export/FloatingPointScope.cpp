#include "export/FloatingPointScope.h"

// The default environment of the C library also clears the bits that flush denormal numbers to zero.

cFloatingPointScope::cFloatingPointScope() {
  std::fegetenv(&fHost);
  std::fesetenv(FE_DFL_ENV);
}

cFloatingPointScope::~cFloatingPointScope() {
  std::fesetenv(&fHost);
}
