#include "cli/FileBytes.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace Cli {

std::string ReadBytes(const std::string& pPath) {
  errno = 0;
  std::ifstream stream(pPath, std::ios::binary);
  std::stringstream text;
  text << stream.rdbuf();
  if (!stream || !text) throw std::runtime_error(std::strerror(errno));
  return std::move(text).str();
}

void WriteBytes(const std::string& pPath, const std::string& pBytes) {
  errno = 0;
  std::ofstream stream(pPath, std::ios::binary);
  if (!stream.write(pBytes.data(), static_cast<std::streamsize>(pBytes.size())).flush()) {
    throw std::runtime_error(std::strerror(errno));
  }
}

}  // namespace Cli
