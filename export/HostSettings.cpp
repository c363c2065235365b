#include "export/HostSettings.h"

#include "engine/ToneSliders.h"

TmEngine::sToneParameters MapSettings(tm_quorvane_settings& pSettings) {
  TmEngine::sToneParameters parameters = TmEngine::MapSliders({.fStrength = pSettings.strength,
                                                               .fLighting = pSettings.lighting,
                                                               .fToneCompression = pSettings.tone_compression,
                                                               .fWhiteClip = pSettings.white_clip,
                                                               .fBlackClip = pSettings.black_clip,
                                                               .fMicrocontrast = pSettings.microcontrast});
  parameters.fTest1 = pSettings.test1 == 1.0f;
  parameters.fHorizontalWrap = pSettings.horizontal_wrap == 1.0f;
  pSettings.white_clip = parameters.fWhiteClip;
  return parameters;
}
