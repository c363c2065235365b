// Renews the checksums of a changed PNG file: nearly every other change would end at the first wrong one. Now
// and then it gets a chunk that states its colours.

#include <zlib.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

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

/// Behind the header. The new size.
std::size_t InsertChunk(std::uint8_t* pData, std::size_t pSize, std::size_t pMaxSize, unsigned pSeed) {
  constexpr struct {
    char fName[5];
    std::uint8_t fLength;
  } kChunks[] = {{"cICP", 4}, {"gAMA", 4}, {"cHRM", 32}, {"sRGB", 1}};
  constexpr std::size_t kHeaderEnd = 33;
  const auto& chunk = kChunks[pSeed / 16 % 4];
  const std::size_t whole = chunk.fLength + std::size_t{12};
  if (pSize < kHeaderEnd || pSize + whole > pMaxSize) return pSize;
  std::uint8_t* const at = pData + kHeaderEnd;
  std::memmove(at + whole, at, pSize - kHeaderEnd);
  Store(chunk.fLength, at);
  std::memcpy(at + 4, chunk.fName, 4);
  for (std::size_t i = 0; i < chunk.fLength; ++i) at[8 + i] = static_cast<std::uint8_t>(pSeed >> (i % 4 * 8));
  constexpr std::uint8_t kKnownColors[] = {9, 16, 0, 1};  // Rec. 2020, PQ, RGB of full range
  if (chunk.fName[1] == 'I' && pSeed % 32 < 16) std::memcpy(at + 8, kKnownColors, sizeof kKnownColors);
  return pSize + whole;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* pData, std::size_t pSize, std::size_t pMaxSize,
                                               unsigned int pSeed) {
  const bool isInserted = pSeed % 16 == 0;
  const std::size_t size =
      isInserted ? InsertChunk(pData, pSize, pMaxSize, pSeed / 16) : LLVMFuzzerMutate(pData, pSize, pMaxSize);
  RenewChecksums(pData, size);
  return size;
}
