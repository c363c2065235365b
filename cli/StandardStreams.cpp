#include "cli/StandardStreams.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <vector>

#include "cli/Failure.h"

namespace Cli {
namespace {

bool WriteAll(int pTo, const char* pBytes, std::size_t pSize) {
  while (pSize > 0) {
    const ssize_t written = write(pTo, pBytes, pSize);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    pBytes += written;
    pSize -= static_cast<std::size_t>(written);
  }
  return true;
}

}  // namespace

bool CopyStream(int pFrom, int pTo) {
  std::vector<char> block(std::size_t{1} << 18);
  for (;;) {
    const ssize_t size = read(pFrom, block.data(), block.size());
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return size == 0;
    if (!WriteAll(pTo, block.data(), static_cast<std::size_t>(size))) return false;
  }
}

cStandardInput::cStandardInput() : fHandle(memfd_create("input", MFD_CLOEXEC)) {
  if (fHandle < 0 || !CopyStream(STDIN_FILENO, fHandle)) {
    const std::string reason = std::strerror(errno);
    if (fHandle >= 0) close(fHandle);
    throw cFailure(eExitCode_CannotRead, "standard input", reason);
  }
  fPath = "/proc/self/fd/" + std::to_string(fHandle);
}

cStandardInput::~cStandardInput() {
  close(fHandle);
}

}  // namespace Cli
