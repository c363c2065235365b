#pragma once

#include <cinttypes>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <map>
#include <string>
#include <type_traits>

/// What was computed, by name.
using tTable = std::map<std::string, std::string>;

/// FNV-1a, 64 bits (IETF draft-eastlake-fnv).
class cHash {
 public:
  void AddBytes(const void* pBytes, std::size_t pCount) {
    const auto* const bytes = static_cast<const unsigned char*>(pBytes);
    for (std::size_t i = 0; i < pCount; ++i) fHash = (fHash ^ bytes[i]) * 0x100000001B3u;
  }
  /// NaN counts as one value: processors differ in its sign.
  template <class tNumber>
  void Add(tNumber pNumber) {
    if constexpr (std::is_floating_point_v<tNumber>) {
      if (std::isnan(pNumber)) pNumber = std::numeric_limits<tNumber>::quiet_NaN();
    }
    AddBytes(&pNumber, sizeof pNumber);
  }
  template <class tNumber>
  void AddAll(const tNumber* pNumbers, std::size_t pCount) {
    for (std::size_t i = 0; i < pCount; ++i) Add(pNumbers[i]);
  }
  std::string Text() const {
    char text[17];
    std::snprintf(text, sizeof text, "%016" PRIx64, fHash);
    return text;
  }

 private:
  std::uint64_t fHash = 0xCBF29CE484222325u;
};

/// What pictures are made of before there are pixels: scales, tables, curves, matrices, each of thousands of
/// random arguments.
void HashArithmetic(tTable& pTable);
