#pragma once

#include <algorithm>
#include <cmath>

/// The hexcone of hue codes, 0 to 65535 for a full circle, as plain formulas.
namespace Reference {

inline int HueCode(float r, float g, float b, float pMin, float pMax) {
  if (!(pMin < pMax)) return 0;
  float hue = 60.0f * (r - g) / (pMax - pMin) + 240.0f;
  if (pMax == g) hue = 60.0f * (b - r) / (pMax - pMin) + 120.0f;
  if (pMax == r) hue = 60.0f * (g - b) / (pMax - pMin) + (g < b ? 360.0f : 0.0f);
  return hue >= 0.0f ? static_cast<int>(std::min(hue / 360.0f * 65535.0f, 65535.0f)) : 0;
}

struct sHexcone {
  float fRGB[3];
};

/// The colour of a hue code whose weakest channel is m.
inline sHexcone HexconeColor(int pHue, float m) {
  const float p = static_cast<float>(pHue) / 65535.0f * 6.0f;
  const float u = p - std::floor(p);
  const float up = m + (1.0f - m) * u;
  const float down = 1.0f + (m - 1.0f) * u;
  const sHexcone sectors[] = {{{1, up, m}},   {{down, 1, m}}, {{m, 1, up}},
                              {{m, down, 1}}, {{up, m, 1}},   {{1, m, down}}};
  return sectors[static_cast<int>(p) % 6];
}

}  // namespace Reference
