#pragma once

#include <cstdint>

namespace TmEngine {

/// Last index of every 65,536-entry table.
inline constexpr int kLastIndex = 65535;

/// Entries of every 65,536-entry table.
inline constexpr int kTableSize = 65536;

/// pValue truncated toward zero and held in [0, pLast]. The clamp happens in float, before the cast, so that
/// no value is undefined: NaN gives 0. pLast must be a float without loss.
inline int ClampToIndex(float pValue, int pLast) {
  const float last = static_cast<float>(pLast);
  if (!(pValue > 0.0f)) return 0;
  return static_cast<int>(pValue < last ? pValue : last);
}

/// Index of a value in [0, 1] into a 65,536-entry table: truncate(v * 65535); below 0 and NaN give 0, above 1
/// gives 65535.
inline int UnitToIndex(float pValue) {
  return ClampToIndex(pValue * 65535.0f, kLastIndex);
}

/// pValue truncated toward zero, unclamped; NaN and what no 64-bit integer holds give 0.
inline std::int64_t TruncateToInt64(float pValue) {
  if (!(pValue >= -0x1p63f && pValue < 0x1p63f)) return 0;
  return static_cast<std::int64_t>(pValue);
}

}  // namespace TmEngine
