#pragma once

#include "engine/stages/HueRecord.h"

namespace TmEngine {

/// What the renderer keeps of a pixel's colour while its luminance is worked on: seven 16-bit slots of a
/// cBitmapU16T, luminance and a HueRecord. Ratios are channel values of linear ProPhoto RGB divided by
/// luminance.
namespace ColorRecord {

using HueRecord::LoadFloat;
using HueRecord::StoreFloat;

inline constexpr int kLuminance = 0;  ///< float in two slots
inline constexpr int kHueRecord = 2;
inline constexpr int kSlots = kHueRecord + HueRecord::kSlots;

inline constexpr int kHue = kHueRecord + HueRecord::kHue;
inline constexpr int kMinRatio = kHueRecord + HueRecord::kMin;
inline constexpr int kMaxRatio = kHueRecord + HueRecord::kMax;

}  // namespace ColorRecord
}  // namespace TmEngine
