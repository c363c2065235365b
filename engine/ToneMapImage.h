#pragma once

namespace TmEngine {

class cBitmapLDR;
class cBitmapXYZ32;
class cRowSink;
class cRowSource;
class cTmRenderer;

/// What a caller chooses about one picture, in the engine's own units (see cTmRenderer::SetToneParameters).
struct sToneParameters {
  float fStrength = 44.0f;        ///< Compression of the base layer: nominal range -34 to 100.
  float fToneCompression = 0.0f;  ///< Pull of far values toward the mean: 0 (none) or more.
  float fMicrocontrast = 100.0f;  ///< Spatial scale of the base layer: 10 to 200.
  float fLighting = 60.0f;        ///< Tonal scale of the base layer: 0 to 200.
  float fContrast = 20.0f;        ///< Contrast of the tone curve: -100 to 100.
  bool fHorizontalWrap = false;   ///< Left and right edges meet (full panoramas).
  bool fTest1 = false;            ///< Stored, without effect.
  float fWhiteClip = 0.0f;        ///< Per cent of the pixels above the white point.
  float fBlackClip = 0.0f;        ///< Per cent of the pixels below the black point.
};

/// Sets pParameters, and the engine's fixed values for what a caller cannot choose.
void SetParameters(cTmRenderer& pRenderer, const sToneParameters& pParameters);

/// The same, but what does not depend on a parameter that changes does not run again (see
/// cTmRenderer::ChangeToneParameters).
void ChangeParameters(cTmRenderer& pRenderer, const sToneParameters& pParameters);

/// Tone-maps pInput (D50-relative XYZ, linear) into pOutput, which has the same size and whose depth
/// and colour space it gets. pInput is only read. pVerbose: write the stages' lines to standard error. Throws
/// cInvalidOperationException ("Output image is not set." for a null pOutput, sizes that differ), and
/// cOutOfMemoryException or std::bad_alloc when memory is short.
void ToneMapImage(cBitmapXYZ32& pInput, cBitmapLDR* pOutput, const sToneParameters& pParameters,
                  bool pVerbose);

/// ToneMapImage for pictures that are read and written by rows: no image is needed.
void ToneMapRows(const cRowSource& pInput, cRowSink* pOutput, const sToneParameters& pParameters,
                 bool pVerbose);

}  // namespace TmEngine
