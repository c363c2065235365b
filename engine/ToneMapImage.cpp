#include "engine/ToneMapImage.h"

#include <memory>

#include "engine/cTmRenderer.h"
#include "engine/image/ImageRows.h"

namespace TmEngine {
namespace {

// Parameters that a caller cannot choose.
constexpr bool kStrengthInContrast = true;
constexpr bool kExposureScale = true;
constexpr float kExposure = 0.0f;
constexpr float kLocalContrast = 0.0f;
constexpr bool kTest2 = false;

/// pSet: a method of cTmRenderer that takes them all.
template <class tSet>
void PassParameters(cTmRenderer& pRenderer, const sToneParameters& pParameters, const tSet& pSet) {
  (pRenderer.*pSet)(pParameters.fStrength, pParameters.fToneCompression, kStrengthInContrast,
                    pParameters.fContrast, kExposureScale, kExposure, pParameters.fMicrocontrast,
                    pParameters.fLighting, kLocalContrast, pParameters.fHorizontalWrap, pParameters.fTest1,
                    kTest2, pParameters.fWhiteClip, pParameters.fBlackClip);
}

}  // namespace

void SetParameters(cTmRenderer& pRenderer, const sToneParameters& pParameters) {
  PassParameters(pRenderer, pParameters, &cTmRenderer::SetToneParameters);
}

void ChangeParameters(cTmRenderer& pRenderer, const sToneParameters& pParameters) {
  PassParameters(pRenderer, pParameters, &cTmRenderer::ChangeToneParameters);
}

void ToneMapRows(const cRowSource& pInput, cRowSink* pOutput, const sToneParameters& pParameters,
                 bool pVerbose) {
  const auto renderer = std::make_unique<cTmRenderer>();
  renderer->SetVerbose(pVerbose);
  renderer->SetInputRows(pInput);
  if (pOutput != nullptr) renderer->SetOutputRows(*pOutput);
  SetParameters(*renderer, pParameters);
  renderer->Render();
}

void ToneMapImage(cBitmapXYZ32& pInput, cBitmapLDR* pOutput, const sToneParameters& pParameters,
                  bool pVerbose) {
  const cImageSource input(pInput);
  if (pOutput == nullptr) return ToneMapRows(input, nullptr, pParameters, pVerbose);
  cImageSink output(*pOutput);
  ToneMapRows(input, &output, pParameters, pVerbose);
}

}  // namespace TmEngine
