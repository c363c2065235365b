#pragma once

#include "engine/ToneMapImage.h"

namespace TmEngine {

/// The sliders that people move. 0 is each one's neutral position; what lies beyond the usual range is mapped
/// the same way.
struct sToneSliders {
  float fStrength = 0.0f;         ///< Compression of large contrasts: usually -100 to 100.
  float fLighting = 0.0f;         ///< Tonal reach of the local adaptation: -10 to 10, higher is more local.
  float fToneCompression = 0.0f;  ///< Extra pull toward the mean tone: 0 or more.
  float fWhiteClip = 0.0f;        ///< Pixels above white, in twentieths of a per cent.
  float fBlackClip = 0.0f;        ///< Pixels below black, in per cent.
  float fMicrocontrast = 0.0f;    ///< Spatial reach of the local adaptation: -10 to 10, higher is finer.
};

/// The engine's values of pSliders: computed in double, rounded to float once. Parameters that have no slider
/// keep their defaults.
sToneParameters MapSliders(const sToneSliders& pSliders);

}  // namespace TmEngine
