#include "cli/TiffAlpha.h"

#include <cstdint>
#include <fstream>

namespace Cli {
namespace {

/// Numbers of a TIFF file, in its byte order. What is beyond its end reads as 0.
class cTiffNumbers {
 public:
  explicit cTiffNumbers(const std::string& pFile) : fStream(pFile, std::ios::binary) {
    const std::uint64_t mark = Read(0, 2);
    fIsBig = mark == 0x4d4d;
    const std::uint64_t version = mark == 0x4d4d || mark == 0x4949 ? Read(2, 2) : 0;
    fIsLarge = version == 43;
    fIsTiff = fIsLarge || version == 42;
  }

  bool IsTiff() const { return fIsTiff; }
  bool IsLarge() const { return fIsLarge; }  ///< Offsets of 64 bits.
  std::string Write16(char pValue) const {
    return fIsBig ? std::string{'\0', pValue} : std::string{pValue, '\0'};
  }

  std::uint64_t Read(std::uint64_t pAt, int pBytes) {
    unsigned char bytes[8] = {};
    fStream.clear();
    fStream.seekg(static_cast<std::streamoff>(pAt));
    fStream.read(reinterpret_cast<char*>(bytes), pBytes);
    if (!fStream) return 0;
    std::uint64_t value = 0;
    for (int i = 0; i < pBytes; ++i) value = value << 8 | bytes[fIsBig ? i : pBytes - 1 - i];
    return value;
  }

 private:
  std::ifstream fStream;
  bool fIsBig = false;
  bool fIsLarge = false;
  bool fIsTiff = false;
};

}  // namespace

std::optional<sAmendment> FindAssociatedAlpha(const std::string& pFile) {
  constexpr std::uint64_t kExtraSamples = 338, kShort = 3, kAssociated = 1;
  constexpr char kUnassociated = 2;
  cTiffNumbers tiff(pFile);
  if (!tiff.IsTiff()) return std::nullopt;
  const int offsetBytes = tiff.IsLarge() ? 8 : 4;
  const int countBytes = tiff.IsLarge() ? 8 : 2;
  const std::uint64_t entryBytes = tiff.IsLarge() ? 20 : 12;
  const std::uint64_t directory = tiff.Read(tiff.IsLarge() ? 8 : 4, offsetBytes);
  if (directory > INT64_MAX / 2) return std::nullopt;
  const std::uint64_t entries = tiff.Read(directory, countBytes);
  std::uint64_t at = directory + static_cast<std::uint64_t>(countBytes);
  for (std::uint64_t i = 0; i < entries && i < 65536; ++i, at += entryBytes) {
    const std::uint64_t tag = tiff.Read(at, 2);
    if (tag == 0 || tag > kExtraSamples) break;  // they rise
    if (tag != kExtraSamples) continue;
    const std::uint64_t value = at + 4 + static_cast<std::uint64_t>(offsetBytes);
    const bool isOne = tiff.Read(at + 2, 2) == kShort && tiff.Read(at + 4, offsetBytes) == 1;
    if (!isOne || tiff.Read(value, 2) != kAssociated) break;
    return sAmendment{static_cast<std::int64_t>(value), 2, tiff.Write16(kUnassociated)};
  }
  return std::nullopt;
}

}  // namespace Cli
