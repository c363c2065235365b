#include "photo/io/FileBytes.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <stdexcept>

namespace Photo {

std::string ReadBytes(const std::string& pPath) {
  errno = 0;
  std::ifstream stream(pPath, std::ios::binary | std::ios::ate);
  std::string bytes(static_cast<std::size_t>(std::max<std::streamoff>(stream.tellg(), 0)), '\0');
  stream.seekg(0);
  if (!stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()))) {
    throw std::runtime_error(std::strerror(errno));
  }
  return bytes;
}

void WriteBytes(const std::string& pPath, const std::string& pBytes) {
  errno = 0;
  std::ofstream stream(pPath, std::ios::binary);
  if (!stream.write(pBytes.data(), static_cast<std::streamsize>(pBytes.size())).flush()) {
    throw std::runtime_error(std::strerror(errno));
  }
}

}  // namespace Photo
