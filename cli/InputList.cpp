#include "cli/InputList.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <set>
#include <string_view>
#include <tuple>

#include "cli/Failure.h"
#include "cli/FileKeys.h"
#include "cli/OutputFormat.h"
#include "cli/StandardStreams.h"

namespace Cli {
namespace {

namespace fs = std::filesystem;

/// What a file in a folder must end in to be taken for a picture. Its content decides later.
constexpr std::string_view kEndings[] = {".hdr", ".pic",  ".rgbe", ".exr",  ".pfm",  ".png",  ".tif", ".tiff",
                                         ".jpg", ".jpeg", ".webp", ".heic", ".heif", ".avif", ".jxl"};

bool HasKnownEnding(const fs::path& pFile) {
  return std::find(std::begin(kEndings), std::end(kEndings), GetEnding(pFile.string())) != std::end(kEndings);
}

bool IsHidden(const fs::path& pFile) {
  return pFile.filename().string().starts_with(".");
}

void Walk(const fs::path& pFolder, const std::string& pResults, std::vector<sInput>& pInputs) {
  std::error_code error;
  for (fs::recursive_directory_iterator entry(pFolder); entry != fs::end(entry); ++entry) {
    const fs::path& file = entry->path();
    if (entry->is_directory(error) && !entry->is_symlink(error)) {
      const bool isResults = !pResults.empty() && fs::equivalent(file, pResults, error);
      if (IsHidden(file) || isResults) entry.disable_recursion_pending();
    } else if (!IsHidden(file) && HasKnownEnding(file) && entry->is_regular_file(error)) {
      const fs::path folder = file.parent_path().lexically_relative(pFolder);
      pInputs.push_back({file.string(), folder == "." ? "" : folder.string(), true});
    }
  }
}

void TakeFolder(const std::string& pFolder, bool pRecursive, const std::string& pResults,
                std::vector<sInput>& pInputs) {
  if (!pRecursive) throw cFailure(eExitCode_Usage, pFolder, "is a folder; -r takes the pictures below it");
  fs::path folder = fs::path(pFolder).lexically_normal();
  if (!folder.has_filename()) folder = folder.parent_path();  // a slash at the end
  try {
    Walk(folder, pResults, pInputs);
  } catch (const fs::filesystem_error& failure) {
    throw cFailure(eExitCode_CannotRead, failure.path1().string(), failure.code().message());
  }
}

std::vector<std::string> ReadLines(std::istream& pStream) {
  std::vector<std::string> lines;
  for (std::string line; std::getline(pStream, line);) {
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

std::vector<std::string> ReadNames(const std::string& pFile) {
  if (pFile == kStandardStream) return ReadLines(std::cin);
  errno = 0;
  std::ifstream stream(pFile);
  std::error_code error;
  if (!stream || fs::is_directory(pFile, error)) {
    throw cFailure(eExitCode_CannotRead, pFile, errno != 0 ? std::strerror(errno) : "is a folder");
  }
  return ReadLines(stream);
}

void SortAndKeepEachOnce(std::vector<sInput>& pInputs) {
  std::sort(pInputs.begin(), pInputs.end(), [](const sInput& pA, const sInput& pB) {
    return std::tie(pA.fFile, pA.fFolder, pA.fIsFound) < std::tie(pB.fFile, pB.fFolder, pB.fIsFound);
  });
  cFileKeys keys;
  std::set<std::string> seen;
  std::erase_if(pInputs, [&](const sInput& pInput) { return !seen.insert(keys.Get(pInput.fFile)).second; });
}

}  // namespace

std::vector<sInput> ListInputs(const sInputNames& pNames, const std::string& pResults) {
  std::vector<std::string> names = pNames.fNames;
  if (!pNames.fFilesFrom.empty()) {
    std::ranges::move(ReadNames(pNames.fFilesFrom), std::back_inserter(names));
  }
  if (names.size() > 1 && std::find(names.begin(), names.end(), kStandardStream) != names.end()) {
    throw cFailure(eExitCode_Usage, "",
                   "standard input (-) is one picture, and no others can be given with it");
  }
  std::vector<sInput> inputs;
  std::error_code error;
  for (const std::string& name : names) {
    if (fs::is_directory(name, error)) {
      TakeFolder(name, pNames.fRecursive, pResults, inputs);
    } else {
      inputs.push_back({name, "", false});
    }
  }
  SortAndKeepEachOnce(inputs);
  return inputs;
}

}  // namespace Cli
