#pragma once

#include <cstdarg>
#include <cstdio>
#include <string>

namespace Cli {

/// Text in the manner of printf, at most a thousand characters.
__attribute__((format(printf, 1, 2))) inline std::string Printf(const char* pFormat, ...) {
  char text[1024];
  va_list arguments;
  va_start(arguments, pFormat);
  std::vsnprintf(text, sizeof text, pFormat, arguments);
  va_end(arguments);
  return text;
}

}  // namespace Cli
