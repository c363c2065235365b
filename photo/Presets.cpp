#include "photo/Presets.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <vector>

#include "photo/base/Failure.h"

namespace Photo {
namespace {

namespace fs = std::filesystem;

constexpr char kExtension[] = ".json";

bool IsFileName(const std::string& pNameOrFile) {
  return pNameOrFile.find('/') != std::string::npos || pNameOrFile.ends_with(kExtension);
}

bool IsFile(const fs::path& pFile) {
  std::error_code error;
  return fs::is_regular_file(pFile, error);
}

fs::path FindPreset(const sPresetFolders& pFolders, const std::string& pNameOrFile) {
  if (IsFile(pNameOrFile)) return pNameOrFile;
  if (IsFileName(pNameOrFile)) {
    std::error_code error;
    if (fs::exists(pNameOrFile, error) && !fs::is_directory(pNameOrFile, error)) {
      throw cFailure(eFailure::kUsage, pNameOrFile, "is not a regular file; store the preset in one first");
    }
    throw cFailure(eFailure::kUsage, pNameOrFile, "there is no preset file of that name");
  }
  for (const std::string& folder : {pFolders.fUser, pFolders.fOwn}) {
    if (folder.empty()) continue;
    fs::path file = fs::path(folder) / (pNameOrFile + kExtension);
    if (IsFile(file)) return file;
  }
  throw cFailure(eFailure::kUsage, "there is neither a file nor a preset '" + pNameOrFile +
                                       "'; {list-presets} shows those there are");
}

sPreset ReadPreset(const fs::path& pFile) {
  constexpr std::uintmax_t kLargest = 1 << 20;  // a photograph that was named by mistake is not read
  return NameFile(pFile.string(), [&] {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(pFile, error);
    if (!error && size > kLargest) throw cFailure(eFailure::kUsage, "is no preset: it is too large for one");
    std::ifstream stream(pFile, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (!stream) throw cFailure(eFailure::kCannotRead, std::strerror(errno));
    return ParsePreset(text);
  });
}

/// The files of a folder that may be presets, by name; none where it cannot be read.
std::set<fs::path> ListFiles(const std::string& pFolder) {
  std::error_code error;
  std::set<fs::path> files;
  for (fs::directory_iterator entry(pFolder, error); !error && entry != fs::end(entry);
       entry.increment(error)) {
    if (entry->path().extension() == kExtension && IsFile(entry->path())) files.insert(entry->path());
  }
  return files;
}

/// What a preset without a description of its own is about: "strength 90, contrast 40".
std::string DescribeChange(const sSettingsChange& pChange) {
  std::string text;
  const auto add = [&](const std::string& pPart) { text += (text.empty() ? "" : ", ") + pPart; };
  for (std::size_t i = 0; i < pChange.fSliders.size(); ++i) {
    if (pChange.fSliders[i].has_value()) {
      add(GetSliders()[i].fName + std::string(" ") + ToText(*pChange.fSliders[i]));
    }
  }
  if (pChange.fWrap.has_value()) add(std::string("wrap ") + GetWrapName(*pChange.fWrap));
  if (pChange.fRendering.has_value()) {
    add(std::string("rendering ") + GetRenderingName(*pChange.fRendering));
  }
  return text;
}

fs::path ChooseTarget(const sPresetFolders& pFolders, const std::string& pNameOrFile) {
  if (IsFileName(pNameOrFile)) return pNameOrFile;
  const fs::path folder = pFolders.fUser;
  if (folder.empty()) {
    throw cFailure(eFailure::kCannotWrite, pNameOrFile,
                   "neither XDG_CONFIG_HOME nor HOME says where presets are kept; name a file");
  }
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw cFailure(eFailure::kCannotWrite, folder.string(), error.message());
  return folder / (pNameOrFile + kExtension);
}

}  // namespace

sPreset LoadPreset(const sPresetFolders& pFolders, const std::string& pNameOrFile) {
  return ReadPreset(FindPreset(pFolders, pNameOrFile));
}

std::vector<sPresetEntry> FindPresets(const sPresetFolders& pFolders) {
  std::vector<sPresetEntry> presets;
  std::set<fs::path> names;
  for (const std::string& folder : {pFolders.fUser, pFolders.fOwn}) {
    for (const fs::path& file : ListFiles(folder)) {
      const bool isHidden = !names.insert(file.stem()).second;
      sPresetEntry entry{file.stem().string(), file.string(), folder == pFolders.fOwn, isHidden, {}, {}};
      try {
        entry.fDescription = ReadPreset(file).fDescription;
      } catch (const cFailure& failure) {
        entry.fFault = failure.what();
      }
      presets.push_back(entry);
    }
  }
  return presets;
}

void SavePreset(const sPresetFolders& pFolders, const std::string& pNameOrFile,
                const sSettingsChange& pChange) {
  if (pChange == sSettingsChange()) {
    throw cFailure(eFailure::kUsage, "neither a preset nor a slider is given to be saved");
  }
  const fs::path target = ChooseTarget(pFolders, pNameOrFile);
  const std::string text = ToJson(sPreset{target.stem().string(), DescribeChange(pChange), pChange});
  std::FILE* const file = std::fopen(target.c_str(), "wbx");
  if (file == nullptr && errno == EEXIST) {
    throw cFailure(eFailure::kUsage, target.string(), "exists already; choose another name, or remove it");
  }
  const bool isWritten = file != nullptr && std::fwrite(text.data(), 1, text.size(), file) == text.size();
  const bool isClosed = file != nullptr && std::fclose(file) == 0;
  if (isWritten && isClosed) return;
  const std::string reason = std::strerror(errno);
  if (file != nullptr) std::remove(target.c_str());
  throw cFailure(eFailure::kCannotWrite, target.string(), reason);
}

}  // namespace Photo
