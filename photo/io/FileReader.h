#pragma once

#include <cstdint>
#include <fstream>
#include <string>

namespace Photo {

/// Reads parts of a file, here and there.
class cFileReader {
 public:
  explicit cFileReader(const std::string& pPath) : fStream(pPath, std::ios::binary) {}

  /// Fewer bytes where the file ends before; none for what cannot be read.
  std::string Read(std::uint64_t pAt, std::size_t pSize) {
    constexpr std::uint64_t kFarthest = std::uint64_t{1} << 62;
    std::string bytes(pSize, '\0');
    fStream.clear();
    fStream.seekg(static_cast<std::streamoff>(pAt < kFarthest ? pAt : kFarthest));
    fStream.read(bytes.data(), static_cast<std::streamsize>(pSize));
    bytes.resize(static_cast<std::size_t>(fStream.gcount()));
    return bytes;
  }

 private:
  std::ifstream fStream;
};

}  // namespace Photo
