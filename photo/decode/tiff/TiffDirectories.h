#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Photo {

/// What a directory of a TIFF file says of its picture.
struct sTiffDirectory {
  std::uint64_t fSubfile = 0;  ///< Bits: 1 a smaller copy of another picture, 4 a mask of one.
  std::uint64_t fBits = 1;     ///< A sample, the first one's.
  std::uint64_t fSampleFormat = 1;
  std::uint64_t fPhotometric = 0;
  bool fIsDng = false;
  std::optional<std::uint64_t> fAssociatedAt;  ///< Where in the file alpha is said to be associated.
  std::vector<std::uint64_t> fSubPlaces;       ///< Where its own directories are.

  bool IsPicture() const { return (fSubfile & 5) == 0; }
};

/// The pages of a TIFF file in their order, and the directories below them.
struct sTiffDirectories {
  bool fIsLittleEndian = true;
  std::vector<sTiffDirectory> fPages;
  std::vector<sTiffDirectory> fBelow;
};

/// Empty for files of other formats. Reads no more than is needed, and not without end: what is damaged ends
/// the list.
sTiffDirectories ReadTiffDirectories(const std::string& pFile);

}  // namespace Photo
