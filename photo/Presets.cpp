#include "photo/Presets.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <vector>

#include "photo/base/Failure.h"
#include "photo/base/Printable.h"

namespace Cli {
namespace {

namespace fs = std::filesystem;

constexpr char kEnding[] = ".json";

/// Empty where the environment names no home.
fs::path GetUserFolder() {
  const char* const config = std::getenv("XDG_CONFIG_HOME");
  if (config != nullptr && config[0] == '/') return fs::path(config) / "quorvane/presets";
  const char* const home = std::getenv("HOME");
  return home != nullptr && home[0] != '\0' ? fs::path(home) / ".config/quorvane/presets" : fs::path();
}

/// Where the running program's presets lie: installed, or in the folder in which it was built.
fs::path GetOwnFolder() {
  std::error_code error;
  const fs::path here = fs::read_symlink("/proc/self/exe", error).parent_path();
  const fs::path installed = (here / QUORVANE_DATA_FROM_BIN / "quorvane/presets").lexically_normal();
  return fs::is_directory(installed, error) ? installed : here / "share/quorvane/presets";
}

bool IsFileName(const std::string& pNameOrFile) {
  return pNameOrFile.find('/') != std::string::npos || pNameOrFile.ends_with(kEnding);
}

bool IsFile(const fs::path& pFile) {
  std::error_code error;
  return fs::is_regular_file(pFile, error);
}

fs::path FindPreset(const std::string& pNameOrFile) {
  if (IsFile(pNameOrFile)) return pNameOrFile;
  if (IsFileName(pNameOrFile)) {
    std::error_code error;
    if (fs::exists(pNameOrFile, error) && !fs::is_directory(pNameOrFile, error)) {
      throw cFailure(eFailure::kUsage, pNameOrFile, "is not a regular file; store the preset in one first");
    }
    throw cFailure(eFailure::kUsage, pNameOrFile, "there is no preset file of that name");
  }
  for (const fs::path& folder : {GetUserFolder(), GetOwnFolder()}) {
    if (folder.empty()) continue;
    fs::path file = folder / (pNameOrFile + kEnding);
    if (IsFile(file)) return file;
  }
  throw cFailure(eFailure::kUsage, "",
                 "--preset: there is neither a file nor a preset '" + pNameOrFile +
                     "'; --list-presets shows those there are");
}

sPreset ReadPreset(const fs::path& pFile) {
  constexpr std::uintmax_t kLargest = 1 << 20;  // a photograph that was named by mistake is not read
  std::error_code error;
  const std::uintmax_t size = fs::file_size(pFile, error);
  if (!error && size > kLargest) {
    throw cFailure(eFailure::kUsage, pFile.string(), "is no preset: it is too large for one");
  }
  std::ifstream stream(pFile, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  if (!stream) throw cFailure(eFailure::kCannotRead, pFile.string(), std::strerror(errno));
  return ParsePreset(pFile.string(), text);
}

struct sFound {
  fs::path fFile;
  std::string fPlace;  ///< In words.
  bool fIsHidden;      ///< By the user's preset of that name.
};

/// The user's presets, then the program's, by name.
std::vector<sFound> FindPresets() {
  std::vector<sFound> presets;
  std::set<fs::path> names;
  for (const fs::path& folder : {GetUserFolder(), GetOwnFolder()}) {
    std::error_code error;
    std::set<fs::path> files;
    for (fs::directory_iterator entry(folder, error); !error && entry != fs::end(entry);
         entry.increment(error)) {
      if (entry->path().extension() == kEnding && IsFile(entry->path())) files.insert(entry->path());
    }
    for (const fs::path& file : files) {
      const bool isHidden = !names.insert(file.stem()).second;
      const std::string place = folder == GetOwnFolder() ? "built in" : file.string();
      presets.push_back({file, isHidden ? place + ", hidden by yours" : place, isHidden});
    }
  }
  return presets;
}

/// One line of the list: the name, what it is for, and where it lies.
std::string Describe(const fs::path& pFile, const std::string& pPlace) {
  std::string text;
  try {
    text = ReadPreset(pFile).fDescription;
  } catch (const cFailure& failure) {
    text = std::string("cannot be used: ") + failure.what();
  }
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::ostringstream line;
  line.width(16);
  line << std::left << pFile.stem().string() << ' ';
  line << text << (text.empty() ? "(" : " (") << pPlace << ")";
  return ToPrintable(line.str()) + "\n";
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
  return text;
}

fs::path ChooseTarget(const std::string& pNameOrFile) {
  if (IsFileName(pNameOrFile)) return pNameOrFile;
  const fs::path folder = GetUserFolder();
  if (folder.empty()) {
    throw cFailure(eFailure::kCannotWrite, pNameOrFile,
                   "neither XDG_CONFIG_HOME nor HOME says where presets are kept; name a file");
  }
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw cFailure(eFailure::kCannotWrite, folder.string(), error.message());
  return folder / (pNameOrFile + kEnding);
}

}  // namespace

sPreset LoadPreset(const std::string& pNameOrFile) {
  return ReadPreset(FindPreset(pNameOrFile));
}

std::string ListPresets() {
  std::string list;
  for (const sFound& found : FindPresets()) list += Describe(found.fFile, found.fPlace);
  return list;
}

std::string ListPresetsForShells() {
  std::string list;
  for (const sFound& found : FindPresets()) {
    if (found.fIsHidden) continue;
    try {
      std::string text = ReadPreset(found.fFile).fDescription;
      std::replace_if(
          text.begin(), text.end(), [](unsigned char pC) { return pC < ' '; }, ' ');
      list += found.fFile.stem().string() + "\t" + text + "\n";
    } catch (const cFailure&) {
      continue;  // nobody can use it
    }
  }
  return list;
}

void SavePreset(const std::string& pNameOrFile, const sSettingsChange& pChange) {
  if (pChange == sSettingsChange()) {
    throw cFailure(eFailure::kUsage, "", "--save-preset: neither a preset nor a slider is given to be saved");
  }
  const fs::path target = ChooseTarget(pNameOrFile);
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

}  // namespace Cli
