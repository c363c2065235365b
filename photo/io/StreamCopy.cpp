#include "photo/io/StreamCopy.h"

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <vector>

namespace Photo {
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

bool CopyStream(int pFrom, int pTo, std::int64_t pMost) {
  std::vector<char> block(std::size_t{1} << 18);
  for (;;) {
    const ssize_t size = read(pFrom, block.data(), block.size());
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return size == 0;
    pMost -= size;
    if (pMost < 0) errno = ENOMEM;
    if (pMost < 0 || !WriteAll(pTo, block.data(), static_cast<std::size_t>(size))) return false;
  }
}

}  // namespace Photo
