#include "photo/decode/tiff/TiffDirectories.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "photo/io/BigEndian.h"
#include "photo/io/FileReader.h"

namespace Photo {
namespace {

constexpr std::size_t kMostPages = 1000;
constexpr std::uint64_t kMostEntries = 1000;
constexpr std::uint64_t kMostBelow = 16;  // a directory

constexpr std::uint64_t kSubfileTag = 254;
constexpr std::uint64_t kBitsTag = 258;
constexpr std::uint64_t kPhotometricTag = 262;
constexpr std::uint64_t kSubDirectoriesTag = 330;
constexpr std::uint64_t kExtraSamplesTag = 338;
constexpr std::uint64_t kSampleFormatTag = 339;
constexpr std::uint64_t kDngVersionTag = 50706;

/// A file with its own order of bytes and size of offsets, which classic and big TIFF differ in.
class cTiffFile {
 public:
  explicit cTiffFile(const std::string& pFile) : fFile(pFile) {
    const std::string start = fFile.Read(0, 8);
    fIsLittle = start.starts_with("II");
    if (start.size() < 8 || !(fIsLittle || start.starts_with("MM"))) return;
    const std::uint64_t version = ToNumber(std::string_view(start).substr(2, 2));
    if (version != 42 && version != 43) return;
    fWord = version == 43 ? 8 : 4;
    fFirst = ReadNumber(version == 43 ? 8 : 4, fWord);
  }

  bool IsLittleEndian() const { return fIsLittle; }
  /// 0 where there is none.
  std::uint64_t GetFirst() const { return fFirst; }

  /// Where the next directory is, 0 for nowhere; none where there is no directory.
  std::optional<std::uint64_t> Read(std::uint64_t pAt, sTiffDirectory& pDirectory) {
    const std::size_t countSize = fWord == 8 ? 8 : 2;
    const std::size_t entrySize = fWord == 8 ? 20 : 12;
    const std::uint64_t count = ReadNumber(pAt, countSize);
    if (count == 0 || count > kMostEntries) return std::nullopt;
    const std::string entries = fFile.Read(pAt + countSize, static_cast<std::size_t>(count) * entrySize);
    for (std::size_t i = 0; i + entrySize <= entries.size(); i += entrySize) {
      const std::string_view entry = std::string_view(entries).substr(i, entrySize);
      Take(entry, pDirectory);
      if (SaysAssociated(entry)) pDirectory.fAssociatedAt = pAt + countSize + i + 4 + fWord;
    }
    if (entries.size() < entrySize) return std::nullopt;
    return ReadNumber(pAt + countSize + count * entrySize, fWord);
  }

 private:
  std::uint64_t ToNumber(std::string_view pBytes) const {
    std::string bytes(pBytes);
    if (fIsLittle) std::reverse(bytes.begin(), bytes.end());
    return ReadBigEndian(bytes);
  }
  std::uint64_t ReadNumber(std::uint64_t pAt, std::size_t pSize) {
    const std::string bytes = fFile.Read(pAt, pSize);
    return bytes.size() < pSize ? 0 : ToNumber(bytes);
  }

  /// An entry: tag, type, number of values, and the values or where they are.
  std::vector<std::uint64_t> ReadValues(std::string_view pEntry) {
    const std::map<std::uint64_t, std::size_t> sizes = {{1, 1}, {3, 2}, {4, 4}, {13, 4}, {16, 8}, {18, 8}};
    const auto size = sizes.find(ToNumber(pEntry.substr(2, 2)));
    if (size == sizes.end()) return {};
    const std::uint64_t stated = ToNumber(pEntry.substr(4, fWord));
    const auto count = static_cast<std::size_t>(std::min(stated, kMostBelow));
    const std::string_view field = pEntry.substr(4 + fWord);
    const bool isInside = stated <= fWord / size->second;
    const std::string bytes =
        isInside ? std::string(field) : fFile.Read(ToNumber(field), count * size->second);
    std::vector<std::uint64_t> values;
    for (std::size_t i = 0; i < count && (i + 1) * size->second <= bytes.size(); ++i) {
      values.push_back(ToNumber(std::string_view(bytes).substr(i * size->second, size->second)));
    }
    return values;
  }

  /// The kind of a single extra sample; with several, each may be anything.
  bool SaysAssociated(std::string_view pEntry) const {
    constexpr std::uint64_t kShort = 3, kAssociated = 1;
    return ToNumber(pEntry.substr(0, 2)) == kExtraSamplesTag && ToNumber(pEntry.substr(2, 2)) == kShort &&
           ToNumber(pEntry.substr(4, fWord)) == 1 && ToNumber(pEntry.substr(4 + fWord, 2)) == kAssociated;
  }

  void Take(std::string_view pEntry, sTiffDirectory& pDirectory) {
    const std::uint64_t tag = ToNumber(pEntry.substr(0, 2));
    if (tag == kDngVersionTag) pDirectory.fIsDng = true;
    if (tag == kSubDirectoriesTag) pDirectory.fSubPlaces = ReadValues(pEntry);
    const std::map<std::uint64_t, std::uint64_t sTiffDirectory::*> fields = {
        {kSubfileTag, &sTiffDirectory::fSubfile},
        {kBitsTag, &sTiffDirectory::fBits},
        {kPhotometricTag, &sTiffDirectory::fPhotometric},
        {kSampleFormatTag, &sTiffDirectory::fSampleFormat}};
    const auto field = fields.find(tag);
    if (field == fields.end()) return;
    const std::vector<std::uint64_t> values = ReadValues(pEntry);
    if (!values.empty()) pDirectory.*field->second = values.front();
  }

  cFileReader fFile;
  bool fIsLittle = false;
  std::size_t fWord = 4;
  std::uint64_t fFirst = 0;
};

}  // namespace

sTiffDirectories ReadTiffDirectories(const std::string& pFile) {
  cTiffFile file(pFile);
  sTiffDirectories directories;
  directories.fIsLittleEndian = file.IsLittleEndian();
  std::set<std::uint64_t> seen;
  std::vector<std::uint64_t> below;
  for (std::uint64_t at = file.GetFirst(); at != 0 && seen.size() < kMostPages && seen.insert(at).second;) {
    sTiffDirectory page;
    const std::optional<std::uint64_t> next = file.Read(at, page);
    if (!next) break;
    below.insert(below.end(), page.fSubPlaces.begin(), page.fSubPlaces.end());
    directories.fPages.push_back(std::move(page));
    at = *next;
  }
  for (const std::uint64_t at : below) {
    sTiffDirectory directory;
    const bool isNew = at != 0 && seen.insert(at).second;
    if (isNew && file.Read(at, directory)) directories.fBelow.push_back(std::move(directory));
  }
  return directories;
}

}  // namespace Photo
