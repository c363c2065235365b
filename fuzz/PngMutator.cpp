// Renews the checksums of a changed PNG file: nearly every other change would end at the first wrong one.

#include <zlib.h>

#include <cstddef>
#include <cstdint>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* pData, std::size_t pSize, std::size_t pMaxSize);

namespace {

std::uint32_t Load(const std::uint8_t* pFrom) {
  return std::uint32_t{pFrom[0]} << 24 | std::uint32_t{pFrom[1]} << 16 | std::uint32_t{pFrom[2]} << 8 |
         pFrom[3];
}

void Store(std::uint32_t pValue, std::uint8_t* pTo) {
  for (int i = 0; i < 4; ++i) pTo[i] = static_cast<std::uint8_t>(pValue >> (24 - 8 * i));
}

/// A chunk is its length, its name, the content and a checksum of name and content.
void RenewChecksums(std::uint8_t* pData, std::size_t pSize) {
  for (std::size_t at = 8; at + 12 <= pSize;) {
    const std::size_t length = Load(pData + at);
    if (length > pSize - at - 12) return;
    Store(static_cast<std::uint32_t>(crc32(0, pData + at + 4, static_cast<uInt>(length + 4))),
          pData + at + 8 + length);
    at += length + 12;
  }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* pData, std::size_t pSize, std::size_t pMaxSize,
                                               unsigned int /*pSeed*/) {
  const std::size_t size = LLVMFuzzerMutate(pData, pSize, pMaxSize);
  RenewChecksums(pData, size);
  return size;
}
