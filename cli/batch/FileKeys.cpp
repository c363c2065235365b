#include "cli/batch/FileKeys.h"

#include <filesystem>

namespace Tool {

std::string cFileKeys::Get(const std::string& pFile) {
  std::error_code error;
  std::filesystem::path file = std::filesystem::path(pFile).lexically_normal();
  const std::string folder = file.parent_path().string();
  const auto found = fFolders.try_emplace(folder);
  std::string& place = found.first->second;
  if (found.second) {
    place = std::filesystem::weakly_canonical(folder.empty() ? "." : folder, error).string();
    if (error) place = folder;
  }
  return place + "/" + file.filename().string();
}

}  // namespace Tool
