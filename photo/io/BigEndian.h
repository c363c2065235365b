#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Numbers as many file formats store them, the highest byte first.

namespace Photo {

/// pBytes: up to eight.
inline std::uint64_t ReadBigEndian(std::string_view pBytes) {
  std::uint64_t number = 0;
  for (const char byte : pBytes) number = number << 8 | static_cast<unsigned char>(byte);
  return number;
}

inline void AppendBigEndian(std::string& pTo, std::uint64_t pNumber, int pBytes) {
  for (int i = pBytes - 1; i >= 0; --i) pTo += static_cast<char>(pNumber >> (8 * i) & 0xff);
}

}  // namespace Photo
