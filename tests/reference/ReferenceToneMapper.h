#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "export/quorvane.h"

/// A plain, slow second writing of the whole path of one call, to hold the library against, bit by bit. It
/// shares nothing with the engine, and puts being read before being fast: straight loops over dense planes.
namespace Reference {

/// The engine's values, as the sliders map to them.
struct sEngineValues {
  float fStrength = 44.0f;
  float fToneCompression = 0.0f;
  float fMicrocontrast = 100.0f;
  float fLighting = 60.0f;
  bool fWrap = false;
  float fWhiteClip = 0.0f;
  float fBlackClip = 0.0f;
};

/// What the stages find out about a picture; the initial values are those of a new renderer.
struct sStatistics {
  float fMinY = 1e30f, fMaxY = -1e30f, fLogMinY = 0.0f, fLogMaxY = 0.0f;
  float fBaseMin = 1e30f, fBaseMax = -1e30f, fDetailMin = 1e30f, fDetailMax = -1e30f;
  double fBaseMean = 0.0, fDetailMeanMagnitude = 0.0;
  float fExposureScale = 1.0f;
  float fBlack = 0.0f, fWhite = 1.0f;
};

struct sPicture {
  std::vector<std::uint16_t> fBGR;  ///< dense, three samples per pixel; for 8 bits the high byte of each
  sStatistics fStatistics;
};

/// The whole call. Returns what the exported function returns, throws std::runtime_error with its message,
/// and appends to pLog what it writes to standard error.
int ToneMap(const tm_quorvane_image& pImage, int pColorSpace, tm_quorvane_settings& pSettings,
            const void* pInput, void* pOutput, std::string* pLog);

/// The middle of the call: pXYZ holds pWidth * pHeight dense triples of D50-relative XYZ.
sPicture ToneMapXYZ(int pWidth, int pHeight, const std::vector<float>& pXYZ, const sEngineValues& pValues,
                    int pOutputBits, int pColorSpace, std::string* pLog);

}  // namespace Reference
