#include "cli/batch/StandardStreams.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>

#include "cli/batch/AvailableMemory.h"
#include "photo/io/StreamCopy.h"

namespace Tool {
namespace {

/// The copy's handle.
int CopyToMemory(int pFrom, const std::string& pName) {
  constexpr std::int64_t kReserve = 4;  // a part of what is free, for the work on the picture
  const std::int64_t most = GetAvailableMemory() / kReserve * (kReserve - 1);
  const int copy = memfd_create("input", MFD_CLOEXEC);
  if (copy >= 0 && Photo::CopyStream(pFrom, copy, most)) return copy;
  const std::string reason =
      errno == ENOMEM ? "more than the memory holds that is free; store the picture in a file first"
                      : std::strerror(errno);
  if (copy >= 0) close(copy);
  throw Photo::cFailure(Photo::eFailure::kCannotRead, pName, reason);
}

}  // namespace

bool IsStream(const std::string& pName) {
  std::error_code error;
  return pName == kStandardStream || std::filesystem::is_fifo(pName, error);
}

std::string GetSpokenName(const std::string& pName) {
  return pName == kStandardStream ? "standard input" : pName;
}

cInputFile::cInputFile(const std::string& pName) : fName(pName), fPath(pName) {
  if (!IsStream(pName)) return;
  const bool isStandard = pName == kStandardStream;
  const int from = isStandard ? STDIN_FILENO : open(pName.c_str(), O_RDONLY | O_CLOEXEC);
  if (from < 0) throw Photo::cFailure(Photo::eFailure::kCannotRead, pName, std::strerror(errno));
  const auto closeStream = [&](const int*) {
    if (!isStandard) close(from);
  };
  const std::unique_ptr<const int, decltype(closeStream)> closer(&from, closeStream);
  fHandle = CopyToMemory(from, GetSpokenName(pName));
  fPath = "/proc/self/fd/" + std::to_string(fHandle);
}

cInputFile::~cInputFile() {
  if (fHandle >= 0) close(fHandle);
}

void cInputFile::Rename(Photo::cFailure& pFailure) const {
  if (fHandle >= 0 && pFailure.GetFile() == fPath) pFailure.SetFile(GetSpokenName(fName));
  throw;
}

}  // namespace Tool
