#include "cli/terminal/Terminal.h"

#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>

namespace Tool {
namespace {

/// "" for none.
std::string GetVariable(const char* pName) {
  const char* const value = std::getenv(pName);
  return value == nullptr ? "" : value;
}

int FindWidth() {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  const int columns = std::atoi(GetVariable("COLUMNS").c_str());
  return columns > 0 ? columns : 80;
}

/// The first of the locale's variables that is set decides.
bool IsLocaleUtf8() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const std::string locale = GetVariable(name);
    if (locale.empty()) continue;
    return strcasestr(locale.c_str(), "UTF-8") != nullptr || strcasestr(locale.c_str(), "UTF8") != nullptr;
  }
  return false;
}

}  // namespace

sTerminal GetTerminal() {
  const bool hasColor =
      isatty(STDOUT_FILENO) == 1 && GetVariable("NO_COLOR").empty() && GetVariable("TERM") != "dumb";
  return {std::clamp(FindWidth(), 40, 400), IsLocaleUtf8(), hasColor};
}

}  // namespace Tool
