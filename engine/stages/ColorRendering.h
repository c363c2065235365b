#pragma once

#include <memory>

#include "engine/kernels/Kernels.h"
#include "engine/math/cMatrix33.h"
#include "engine/stages/RowEncoder.h"

namespace TmEngine {

class cColorSpace;

/// Final rendering that keeps colours: the tone curve is applied to luminance, and the three channels of
/// linear light are scaled along, so that hue and purity stay as they were. Colours near or beyond the ends
/// of the output's gamut go toward the grey of their luminance, with their hue in Oklab (B. Ottosson, "A
/// perceptual color space for image processing", 2020): softly, so that none is cut off.
class cColorRendering {
 public:
  /// What a rendering takes; all of it stays the caller's.
  struct sInput {
    const cColorSpace& fSpace;        ///< of the output
    const cMatrix33& fMatrix;         ///< linear working RGB to linear output RGB
    const int* fCurve;                ///< see kLuminanceSteps
    const float* fHues;               ///< three floats per hue code, or null for neutral ones
    const sExposure& fExposure;       ///< brings luminance to the curve's range
    const unsigned short* fEncoding;  ///< see cOutputEncoding
    int fBitDepth;                    ///< of the output
  };
  explicit cColorRendering(const sInput& pInput);

  /// The pixels of one run, as places in the table of samples.
  void Fill(const sColorRun& pFrom, int pCount, sColorIndices& pTo);
  /// Writes the samples of pCount of them, from pOffset on, from column pX of a row on.
  void Put(const sColorIndices& pIndices, int pOffset, const sSampleRow& pRow, int pX, int pCount) const;

 private:
  void Soften(int pCount);
  void Encode(const float* pLight, int* pTo, int pCount) const;

  cMatrix33 fToCones;
  cMatrix33 fFromCones;
  float fWeights[3];
  sColorRendering fRendering;
  sExposure fExposure;
  std::unique_ptr<unsigned char[]> fBytes;   // output of 8 bits: over light
  std::unique_ptr<unsigned short[]> fCodes;  // and of 16 bits: over the square root of light

  // One run: linear output RGB, and of those colours that are to be softened their places and channels.
  float fR[kRunLength], fG[kRunLength], fB[kRunLength];
  int fPlaces[kRunLength];
  float fSoftR[kRunLength], fSoftG[kRunLength], fSoftB[kRunLength];
};

}  // namespace TmEngine
