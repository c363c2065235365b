#pragma once

#include "engine/Quantise.h"

namespace TmEngine {

/// The largest and the smallest of three channels.
struct sChannelRange {
  float fMax;
  float fMin;
};

inline sChannelRange ChannelRange(float pR, float pG, float pB) {
  const float maxRG = pR > pG ? pR : pG;
  const float minRG = pR < pG ? pR : pG;
  return {maxRG > pB ? maxRG : pB, minRG < pB ? minRG : pB};
}

/// Hexcone hue (A. R. Smith, "Color gamut transform pairs", SIGGRAPH 1978) of a colour whose range is known,
/// as truncate(degrees / 360 * 65535). Greys and what is not a number give 0.
inline unsigned short HueCode(float pR, float pG, float pB, const sChannelRange& pRange) {
  const float span = pRange.fMax - pRange.fMin;
  float degrees = 0.0f;
  if (pRange.fMax == pRange.fMin) {
    degrees = 0.0f;
  } else if (pRange.fMax == pR) {
    degrees = 60.0f * (pG - pB) / span;
    if (pG < pB) degrees = degrees + 360.0f;
  } else if (pRange.fMax == pG) {
    degrees = 60.0f * (pB - pR) / span + 120.0f;
  } else {
    degrees = 60.0f * (pR - pG) / span + 240.0f;
  }
  return static_cast<unsigned short>(ClampToIndex(degrees / 360.0f * 65535.0f, kLastIndex));
}

}  // namespace TmEngine
