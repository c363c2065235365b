#include "engine/stages/HueTable.h"

#include <cmath>

#include "engine/base/StageFlags.h"
#include "engine/image/PixelRows.h"

namespace TmEngine {
namespace {

/// The hexcone's colour of value 1 and minimum m.
cHueTable::sColor HexconeColor(int pHue, float m) {
  const float p = static_cast<float>(pHue) / 65535.0f * 6.0f;
  const float sector = std::floor(p);
  const float u = p - sector;
  const float rising = m + (1.0f - m) * u;
  const float falling = 1.0f + (m - 1.0f) * u;
  switch (static_cast<int>(sector) % 6) {
    case 0:
      return {1.0f, rising, m};
    case 1:
      return {falling, 1.0f, m};
    case 2:
      return {m, 1.0f, rising};
    case 3:
      return {m, falling, 1.0f};
    case 4:
      return {rising, m, 1.0f};
    default:
      return {1.0f, m, falling};
  }
}

}  // namespace

cHueTable::cHueTable() {
  for (int i = 0; i < kTableSize; ++i) fColors[i] = HexconeColor(i, 0.0f);
}

bool cHueTable::Build(const unsigned short* pHueShift, const float* pSaturation, const bool* pCancel) {
  for (int i = 0; i < kTableSize; ++i) {
    if (i % kRunLength == 0 && IsSet(pCancel)) return false;
    const int hue = (pHueShift[i] + i + 32769) % kTableSize;
    fColors[i] = HexconeColor(hue, 1.0f - 2.0f * pSaturation[i]);
  }
  return true;
}

}  // namespace TmEngine
