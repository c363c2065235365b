#pragma once

#include <cstdint>

namespace Photo {

// What std::bit_cast does, which some standard libraries do not have.

/// The bits of a float. Above 0, larger floats have larger bits.
inline std::int32_t BitsOf(float pValue) {
  return __builtin_bit_cast(std::int32_t, pValue);
}

/// The float of these bits.
inline float FloatOf(std::int32_t pBits) {
  return __builtin_bit_cast(float, pBits);
}

}  // namespace Photo
