#pragma once

#include <cstring>

#include "engine/stages/HueCode.h"

namespace TmEngine {

/// A colour by its hue and its smallest and largest channel, in five 16-bit slots. With the hue table they
/// give the three channels back.
namespace HueRecord {

inline constexpr int kSlots = 5;
inline constexpr int kHue = 0;  ///< 0 to 65535 for 0 to 360 degrees
inline constexpr int kMin = 1;  ///< float in two slots
inline constexpr int kMax = 3;  ///< float in two slots

/// Floats lie across two slots, low half first; they are not aligned as floats.
inline float LoadFloat(const unsigned short* pSlot) {
  float value;
  std::memcpy(&value, pSlot, sizeof value);
  return value;
}

inline void StoreFloat(unsigned short* pSlot, float pValue) {
  std::memcpy(pSlot, &pValue, sizeof pValue);
}

/// A colour without a positive channel gets the smallest normal float as its largest and 0 as its smallest,
/// so that min / max is always a number.
inline void Store(unsigned short* pRecord, float pR, float pG, float pB) {
  constexpr float kSmallestNormal = 1.1754944e-38f;
  sChannelRange range = ChannelRange(pR, pG, pB);
  pRecord[kHue] = HueCode(pR, pG, pB, range);
  if (range.fMax <= 0.0f) range = {kSmallestNormal, 0.0f};
  StoreFloat(pRecord + kMin, range.fMin);
  StoreFloat(pRecord + kMax, range.fMax);
}

}  // namespace HueRecord
}  // namespace TmEngine
