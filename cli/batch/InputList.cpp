#include "cli/batch/InputList.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <set>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>

#include "cli/batch/FileKeys.h"
#include "cli/batch/NameList.h"
#include "cli/batch/StandardStreams.h"
#include "photo/base/Failure.h"
#include "photo/decode/PictureStart.h"
#include "photo/encode/OutputFormat.h"

namespace Tool {
namespace {

namespace fs = std::filesystem;

/// What a file in a folder may end in to be taken for a picture. Its content decides later.
constexpr std::string_view kExtensions[] = {".hdr",  ".pic",  ".rgbe", ".exr",  ".pfm",
                                            ".png",  ".tif",  ".tiff", ".jpg",  ".jpeg",
                                            ".webp", ".heic", ".heif", ".avif", ".jxl"};

/// Raw files of cameras are not read, though many begin as TIFF files do.
constexpr std::string_view kRawExtensions[] = {".3fr", ".arw", ".cr2", ".dcr", ".dng", ".erf", ".fff", ".gpr",
                                               ".iiq", ".k25", ".kdc", ".mef", ".mos", ".nef", ".nrw", ".orf",
                                               ".pef", ".raw", ".rw2", ".rwl", ".sr2", ".srf", ".srw"};

bool HasExtensionOf(std::span<const std::string_view> pExtensions, const fs::path& pFile) {
  return std::find(pExtensions.begin(), pExtensions.end(), Photo::GetExtension(pFile.string())) !=
         pExtensions.end();
}

bool IsHidden(const fs::path& pFile) {
  return pFile.filename().string().starts_with(".");
}

/// The pictures in a folder and below it.
class cFolderWalk {
 public:
  cFolderWalk(const fs::path& pRoot, const std::string& pResults, sInputList& pList)
      : fRoot(pRoot), fResults(pResults), fList(pList) {}

  /// A folder below that cannot be read is noted; the root throws cFailure.
  void Walk() {
    fFolders = {fRoot};
    while (!fFolders.empty()) {
      const fs::path folder = std::move(fFolders.back());
      fFolders.pop_back();
      std::error_code error;
      for (fs::directory_iterator entry(folder, error); !error && entry != fs::end(entry);
           entry.increment(error)) {
        Take(*entry);
      }
      if (!error) continue;
      if (folder == fRoot)
        throw Photo::cFailure(Photo::eFailure::kCannotRead, folder.string(), error.message());
      fList.fUnreadable.push_back({folder.string(), error.message()});
    }
  }

 private:
  void Take(const fs::directory_entry& pEntry) {
    std::error_code error;
    const fs::path& file = pEntry.path();
    const bool isLink = pEntry.is_symlink(error);
    if (IsHidden(file)) {
      ++fList.fLeftOut.fHidden;
    } else if (pEntry.is_directory(error)) {
      if (isLink) ++fList.fLeftOut.fLinks;
      if (!isLink && !IsResults(file)) fFolders.push_back(file);
    } else if (pEntry.is_regular_file(error)) {
      TakeFile(file);
    } else {
      ++(isLink ? fList.fLeftOut.fLinks : fList.fLeftOut.fSpecial);
    }
  }

  void TakeFile(const fs::path& pFile) {
    const bool isKnown = HasExtensionOf(kExtensions, pFile);
    if (!isKnown && (HasExtensionOf(kRawExtensions, pFile) || !Photo::HoldsPicture(pFile.string()))) {
      ++fList.fLeftOut.fUnknown;
      return;
    }
    const fs::path folder = pFile.parent_path().lexically_relative(fRoot);
    fList.fInputs.push_back({pFile.string(), folder == "." ? "" : folder.string(), true, !isKnown});
  }

  bool IsResults(const fs::path& pFolder) const {
    std::error_code error;
    return !fResults.empty() && fs::equivalent(pFolder, fResults, error);
  }

  const fs::path& fRoot;
  const std::string& fResults;
  sInputList& fList;
  std::vector<fs::path> fFolders;  ///< Yet to be read.
};

void TakeFolder(const std::string& pFolder, bool pRecursive, const std::string& pResults, sInputList& pList) {
  if (!pRecursive)
    throw Photo::cFailure(Photo::eFailure::kUsage, pFolder, "is a folder; -r takes the pictures below it");
  fs::path folder = fs::path(pFolder).lexically_normal();
  if (!folder.has_filename()) folder = folder.parent_path();  // a slash at the end
  cFolderWalk(folder, pResults, pList).Walk();
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

sInputList ListInputs(const sInputNames& pNames, const std::string& pResults) {
  std::vector<std::string> names = pNames.fNames;
  if (!pNames.fFilesFrom.empty()) {
    std::ranges::move(ReadNames(pNames.fFilesFrom, pNames.fNulSeparated), std::back_inserter(names));
  }
  if (names.size() > 1 && std::find(names.begin(), names.end(), kStandardStream) != names.end()) {
    throw Photo::cFailure(Photo::eFailure::kUsage, "",
                          "standard input (-) is one picture, and no others can be given with it");
  }
  sInputList list;
  std::error_code error;
  for (const std::string& name : names) {
    if (fs::is_directory(name, error)) {
      TakeFolder(name, pNames.fRecursive, pResults, list);
    } else {
      list.fInputs.push_back({name, "", false, false});
    }
  }
  SortAndKeepEachOnce(list.fInputs);
  return list;
}

}  // namespace Tool
