#pragma once

#include <cstring>

namespace TmEngine {

/// What the renderer keeps of a pixel's colour while its luminance is worked on: seven 16-bit slots of a
/// cBitmapU16T. Ratios are channel values of linear ProPhoto RGB divided by luminance.
namespace ColorRecord {

inline constexpr int kSlots = 7;
inline constexpr int kLuminance = 0;  ///< float in two slots
inline constexpr int kHue = 2;        ///< 0 to 65535 for 0 to 360 degrees
inline constexpr int kMinRatio = 3;   ///< float in two slots
inline constexpr int kMaxRatio = 5;   ///< float in two slots

/// Floats lie across two slots, low half first; they are not aligned as floats.
inline float LoadFloat(const unsigned short* pSlot) {
  float value;
  std::memcpy(&value, pSlot, sizeof value);
  return value;
}

inline void StoreFloat(unsigned short* pSlot, float pValue) {
  std::memcpy(pSlot, &pValue, sizeof pValue);
}

}  // namespace ColorRecord
}  // namespace TmEngine
