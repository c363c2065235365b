#include "export/FloatingPointScope.h"

cFloatingPointScope::cFloatingPointScope() : fHost(TmEngine::GetFloatingPoint()) {
  TmEngine::SetDefaultFloatingPoint();
}

cFloatingPointScope::~cFloatingPointScope() {
  TmEngine::SetFloatingPoint(fHost);
}
