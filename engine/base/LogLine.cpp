#include "engine/base/LogLine.h"

#include <cstdarg>

#include "engine/base/System.h"

namespace TmEngine {

void LogLine(const char* pFormat, ...) {
  std::va_list arguments;
  va_start(arguments, pFormat);
  PrintToStandardError(pFormat, arguments);
  va_end(arguments);
}

}  // namespace TmEngine
