#include "cli/terminal/Console.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "photo/Printable.h"
#include "photo/base/Failure.h"

namespace Tool {

void OpenMissingStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) != -1) continue;
    // the wrong way round, so that its use fails; the lowest free number is this one
    [[maybe_unused]] const int opened = open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

void Print(const std::string& pText) {
  errno = 0;
  const bool isTaken = std::fwrite(pText.data(), 1, pText.size(), stdout) == pText.size();
  if (std::fflush(stdout) == 0 && isTaken) return;
  if (errno == EPIPE) throw sOutputClosed();
  throw Photo::cFailure(Photo::eFailure::kCannotWrite, "standard output", std::strerror(errno));
}

std::string NameForOutput(const std::string& pName) {
  return isatty(STDOUT_FILENO) != 0 ? Photo::ToPrintable(pName) : pName;
}

void PrintMessage(const std::string& pLine, const char* pColour) {
  const bool isColoured = *pColour != '\0';
  std::fprintf(stderr, "%s%s%s\n", isColoured ? pColour : "", Photo::ToPrintable(pLine).c_str(),
               isColoured ? "\033[0m" : "");
}

}  // namespace Tool
