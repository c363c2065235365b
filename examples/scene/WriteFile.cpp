#include "examples/scene/WriteFile.h"

#include <unistd.h>

#include <filesystem>
#include <stdexcept>

namespace Scene {

void WriteWhole(const std::string& pPath, const std::function<void(const std::string&)>& pWrite) {
  const std::string part = pPath + "." + std::to_string(getpid()) + ".part";
  try {
    pWrite(part);
    std::filesystem::rename(part, pPath);
  } catch (const std::exception& exception) {
    std::error_code ignored;
    std::filesystem::remove(part, ignored);
    throw std::runtime_error("cannot write '" + pPath + "': " + exception.what());
  }
}

}  // namespace Scene
