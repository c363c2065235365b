#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "fuzz/FuzzInput.h"

/// A file in memory, with a name under which it can be opened.
class cMemoryFile {
 public:
  explicit cMemoryFile(std::string_view pContent) : fHandle(memfd_create("fuzz", MFD_CLOEXEC)) {
    const bool isWritten =
        write(fHandle, pContent.data(), pContent.size()) == static_cast<ssize_t>(pContent.size());
    Require(isWritten, "a file in memory can be written");
  }
  cMemoryFile(const cMemoryFile&) = delete;
  cMemoryFile& operator=(const cMemoryFile&) = delete;
  ~cMemoryFile() { close(fHandle); }
  std::string Name() const { return "/proc/self/fd/" + std::to_string(fHandle); }

 private:
  int fHandle;
};
