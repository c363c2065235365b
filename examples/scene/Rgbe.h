#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Scene {

/// Three floats as mantissas with one exponent: value = (mantissa + 0.5) * 2^(exponent - 136).
inline void ToRgbe(const float* pFrom, unsigned char (&pTo)[4]) {
  const float largest = std::max(pFrom[0], std::max(pFrom[1], pFrom[2]));
  int exponent = 0;
  if (!(largest > 1.0e-32f)) {
    std::memset(pTo, 0, sizeof pTo);
    return;
  }
  std::frexp(largest, &exponent);
  const float scale = std::ldexp(1.0f, 8 - exponent);
  for (int i = 0; i < 3; ++i) pTo[i] = static_cast<unsigned char>(std::max(pFrom[i], 0.0f) * scale);
  pTo[3] = static_cast<unsigned char>(exponent + 128);
}

}  // namespace Scene
