#include "photo/decode/tiff/RawFile.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "photo/decode/tiff/TiffDirectories.h"
#include "photo/io/FileReader.h"

namespace Photo {
namespace {

/// The bytes that files of a kind have at one place.
struct sMark {
  std::size_t fAt;
  std::string_view fBytes;
  const char* fName;
};
constexpr sMark kMarks[] = {
    // between the header and the first directory, where no other TIFF file has anything
    {0, std::string_view("II*\0\x10\0\0\0CR\2", 11), "a raw file (CR2)"},
    {0, "IIRO", "a raw file (ORF)"},
    {0, "IIRS", "a raw file (ORF)"},
    {0, "MMOR", "a raw file (ORF)"},
    {0, std::string_view("IIU\0", 4), "a raw file (RW2)"},
    {4, "ftypcrx ", "a raw file (CR3)"},
    {0, "FUJIFILMCCD-RAW", "a raw file (RAF)"}};

/// Samples behind the filter of a sensor, or of a sensor's own colours.
bool IsOfSensor(const sTiffDirectory& pDirectory) {
  constexpr std::uint64_t kFilterArray = 32803;
  constexpr std::uint64_t kLinearRaw = 34892;
  return pDirectory.fPhotometric == kFilterArray || pDirectory.fPhotometric == kLinearRaw;
}

}  // namespace

std::string NameRawFile(const std::string& pFile) {
  const std::string start = cFileReader(pFile).Read(0, 16);
  const auto* const mark = std::find_if(std::begin(kMarks), std::end(kMarks), [&](const sMark& pMark) {
    return std::string_view(start).substr(std::min(pMark.fAt, start.size())).starts_with(pMark.fBytes);
  });
  if (mark != std::end(kMarks)) return mark->fName;
  const sTiffDirectories directories = ReadTiffDirectories(pFile);
  if (directories.fPages.empty()) return "";
  const auto hasSensor = [](const std::vector<sTiffDirectory>& pAll) {
    return std::any_of(pAll.begin(), pAll.end(), IsOfSensor);
  };
  const bool isRaw = hasSensor(directories.fPages) || hasSensor(directories.fBelow);
  if (!isRaw) return "";
  return directories.fPages.front().fIsDng ? "a raw file (DNG)" : "a raw file of a camera";
}

}  // namespace Photo
