#include "export/HostSettings.h"

TmEngine::sToneParameters MapSettings(tm_quorvane_settings& pSettings) {
  const auto lighting = static_cast<double>(pSettings.lighting);
  TmEngine::sToneParameters parameters;
  parameters.fStrength = static_cast<float>(0.33 * static_cast<double>(pSettings.strength) + 44.0);
  parameters.fLighting = static_cast<float>(lighting > 0.0 ? 60.0 - 6.0 * lighting : 60.0 - 10.0 * lighting);
  parameters.fToneCompression = static_cast<float>(static_cast<double>(pSettings.tone_compression) / 10.0);
  pSettings.white_clip = static_cast<float>(static_cast<double>(pSettings.white_clip) / 20.0);
  parameters.fWhiteClip = pSettings.white_clip;
  parameters.fBlackClip = pSettings.black_clip;
  parameters.fMicrocontrast = static_cast<float>(100.0 - 9.0 * static_cast<double>(pSettings.microcontrast));
  parameters.fTest1 = pSettings.test1 == 1.0f;
  parameters.fHorizontalWrap = pSettings.horizontal_wrap == 1.0f;
  return parameters;
}
