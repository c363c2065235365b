#include "photo/decode/JpegExtras.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string_view>

#include "photo/io/BigEndian.h"
#include "photo/io/FileReader.h"

namespace Photo {
namespace {

constexpr int kMostSegments = 1000;

/// Calls pTake with each segment of applications before the pixels.
void WalkSegments(const std::string& pFile, const std::function<void(const std::string&)>& pTake) {
  cFileReader file(pFile);
  if (file.Read(0, 2) != "\xff\xd8") return;
  std::uint64_t at = 2;
  for (int i = 0; i < kMostSegments; ++i) {
    const std::string head = file.Read(at, 4);
    const bool isSegment = head.size() == 4 && head[0] == '\xff' && head[1] >= '\xc0' && head[1] <= '\xfe';
    if (!isSegment || head[1] == '\xda') return;
    const std::uint64_t size = ReadBigEndian(std::string_view(head).substr(2));
    if (size < 2) return;
    if (head[1] == '\xe1' || head[1] == '\xe2') pTake(file.Read(at + 4, static_cast<std::size_t>(size - 2)));
    at += 2 + size;
  }
}

/// An index of pictures ("MPF"), laid out as TIFF is.
class cPictureIndex {
 public:
  explicit cPictureIndex(std::string_view pBytes) : fBytes(pBytes), fIsLittle(pBytes.starts_with("II")) {}

  int CountOthers() const {
    constexpr std::uint64_t kEntries = 0xb002;
    const std::uint64_t directory = Read(4, 4);
    const std::uint64_t count = Read(directory, 2);
    for (std::uint64_t i = 0; i < count; ++i) {
      const std::uint64_t at = directory + 2 + 12 * i;
      if (Read(at, 2) == kEntries) return CountOthers(Read(at + 8, 4), Read(at + 4, 4));
    }
    return 0;
  }

 private:
  /// The first entry is for the picture itself.
  int CountOthers(std::uint64_t pAt, std::uint64_t pBytes) const {
    constexpr std::uint64_t kEntrySize = 16;
    constexpr std::uint64_t kSmallerCopy = 0x01;
    int count = 0;
    for (std::uint64_t at = kEntrySize; at < std::min<std::uint64_t>(pBytes, fBytes.size());
         at += kEntrySize) {
      if ((Read(pAt + at, 4) >> 16 & 0xff) != kSmallerCopy) ++count;
    }
    return count;
  }

  /// 0 beyond the end.
  std::uint64_t Read(std::uint64_t pAt, std::size_t pSize) const {
    if (pAt + pSize > fBytes.size()) return 0;
    std::string bytes(fBytes.substr(static_cast<std::size_t>(pAt), pSize));
    if (fIsLittle) std::reverse(bytes.begin(), bytes.end());
    return ReadBigEndian(bytes);
  }

  std::string_view fBytes;
  bool fIsLittle;
};

}  // namespace

sJpegExtras ReadJpegExtras(const std::string& pFile) {
  constexpr std::string_view kIndex("MPF\0", 4);
  sJpegExtras extras;
  WalkSegments(pFile, [&](const std::string& pSegment) {
    const auto holds = [&](const char* pText) { return pSegment.find(pText) != std::string::npos; };
    if (holds("urn:iso:std:iso:ts:21496") || holds("hdrgm:Version")) extras.fHasGainMap = true;
    if (pSegment.starts_with(kIndex)) {
      extras.fPictures = cPictureIndex(std::string_view(pSegment).substr(kIndex.size())).CountOthers();
    }
  });
  return extras;
}

}  // namespace Photo
