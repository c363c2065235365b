#include "cli/PresetFolders.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace Tool {
namespace {

namespace fs = std::filesystem;

/// Empty where the environment names no home.
std::string FindUserFolder() {
  const char* const config = std::getenv("XDG_CONFIG_HOME");
  if (config != nullptr && config[0] == '/') return std::string(config) + "/quorvane/presets";
  const char* const home = std::getenv("HOME");
  return home != nullptr && home[0] != '\0' ? std::string(home) + "/.config/quorvane/presets" : "";
}

/// Where the running program's presets are: installed, or in the folder in which it was built.
std::string FindOwnFolder() {
  std::error_code error;
  const fs::path here = fs::read_symlink("/proc/self/exe", error).parent_path();
  const fs::path installed = (here / QUORVANE_DATA_FROM_BIN / "quorvane/presets").lexically_normal();
  return (fs::is_directory(installed, error) ? installed : here / "share/quorvane/presets").string();
}

}  // namespace

Photo::sPresetFolders GetPresetFolders() {
  return {FindUserFolder(), FindOwnFolder()};
}

}  // namespace Tool
