#include "engine/ToneSliders.h"

namespace TmEngine {
namespace {

/// 0 is 60 of the engine's 0 to 200, where there is more room above: each unit below 0 is a larger step.
double MapLighting(double pLighting) {
  return pLighting > 0.0 ? 60.0 - 6.0 * pLighting : 60.0 - 10.0 * pLighting;
}

}  // namespace

sToneParameters MapSliders(const sToneSliders& pSliders) {
  sToneParameters parameters;
  parameters.fStrength = static_cast<float>(0.33 * static_cast<double>(pSliders.fStrength) + 44.0);
  parameters.fLighting = static_cast<float>(MapLighting(static_cast<double>(pSliders.fLighting)));
  parameters.fToneCompression = static_cast<float>(static_cast<double>(pSliders.fToneCompression) / 10.0);
  parameters.fWhiteClip = static_cast<float>(static_cast<double>(pSliders.fWhiteClip) / 20.0);
  parameters.fBlackClip = pSliders.fBlackClip;
  parameters.fMicrocontrast = static_cast<float>(100.0 - 9.0 * static_cast<double>(pSliders.fMicrocontrast));
  return parameters;
}

}  // namespace TmEngine
