// The renderer of tone mapping as the tool uses it: pictures of any finite floats, and changes between runs.

#include <cmath>
#include <cstring>
#include <new>

#include "engine/base/cException.h"
#include "engine/cTmRenderer.h"
#include "engine/image/BitmapRows.h"
#include "engine/image/cBitmapXYZ32.h"
#include "fuzz/FuzzPicture.h"

using namespace TmEngine;

namespace {

constexpr int kLargest = 16;

/// Parameters for SetToneParameters, without the flags that have no effect.
struct sParameters {
  explicit sParameters(FuzzedDataProvider& pData) {
    for (float& value : fValues) value = TakeFloat(pData, 0.0f, 100.0f);
    // Mostly coarse grids: fine ones take long.
    const bool isCoarse = pData.ConsumeIntegralInRange(0, 15) > 0;
    fMicrocontrast =
        isCoarse ? pData.ConsumeFloatingPointInRange(150.0f, 200.0f) : TakeFloat(pData, 10.0f, 200.0f);
    fLighting = isCoarse ? pData.ConsumeFloatingPointInRange(100.0f, 200.0f) : TakeFloat(pData, 0.0f, 200.0f);
    fLocalContrast = TakeFloat(pData, 0.0f, 200.0f);
    fIsWrapped = pData.ConsumeBool();
    fFlags = pData.ConsumeIntegral<std::uint8_t>();
  }
  bool Has(int pFlag) const { return (fFlags >> pFlag & 1) != 0; }
  void TakeBaseFrom(const sParameters& pOther) {
    fMicrocontrast = pOther.fMicrocontrast;
    fLighting = pOther.fLighting;
    fLocalContrast = pOther.fLocalContrast;
    fIsWrapped = pOther.fIsWrapped;
  }
  void HandTo(cTmRenderer& pRenderer) const {
    const float* const v = fValues;
    pRenderer.SetToneParameters(v[0], v[1], Has(0), v[2], Has(1), v[3], fMicrocontrast, fLighting,
                                fLocalContrast, fIsWrapped, false, false, v[4], v[5]);
  }

  float fValues[6];
  float fMicrocontrast, fLighting, fLocalContrast;
  bool fIsWrapped;
  std::uint8_t fFlags;
};

/// Any bits that are a finite number; the rest is black.
void FillPicture(cBitmapXYZ32& pPicture, const std::uint8_t* pBytes, std::size_t pSize) {
  const auto rows = RowsOf(pPicture);
  for (int y = 0; y < pPicture.GetHeight(); ++y) {
    for (int i = 0; i < 3 * pPicture.GetWidth(); ++i) {
      float sample = 0.0f;
      if (pSize >= sizeof sample) std::memcpy(&sample, pBytes, sizeof sample);
      rows.Row(y)[i] = std::isfinite(sample) ? sample : 0.0f;
      const std::size_t taken = std::min(pSize, sizeof sample);
      pBytes += taken;
      pSize -= taken;
    }
  }
}

struct sJob {
  cBitmapXYZ32& fInput;
  cBitmapLDR& fOutput;

  std::unique_ptr<cTmRenderer> MakeRenderer() const {
    auto renderer = std::make_unique<cTmRenderer>();
    renderer->SetInput(&fInput);
    renderer->SetOutput(&fOutput);
    return renderer;
  }
};

/// One run whose settings, except those of the base layer, are to leave no trace. The base layer stays: of
/// one without contrast the renderer takes black and white as they are.
void RunBefore(cTmRenderer& pRenderer, const sParameters& pLater, FuzzedDataProvider& pData) {
  sParameters parameters(pData);
  parameters.TakeBaseFrom(pLater);
  parameters.HandTo(pRenderer);
  sHueCurves(pData).HandTo(pRenderer);
  RenderOrCancel(pRenderer, pData);
}

void Run(const sJob& pJob, FuzzedDataProvider& pData) {
  const sParameters parameters(pData);
  const sHueCurves curves(pData);
  const auto rendering = pData.ConsumeBool() ? eRendering_Colors : eRendering_Channels;
  const auto renderer = pJob.MakeRenderer();
  if (pData.ConsumeBool()) RunBefore(*renderer, parameters, pData);
  const auto fresh = pJob.MakeRenderer();
  for (cTmRenderer* const each : {renderer.get(), fresh.get()}) {
    parameters.HandTo(*each);
    curves.HandTo(*each);
    each->SetRendering(rendering);
  }
  CheckAgainst(*fresh, *renderer, pJob.fOutput);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t pSize) {
  FuzzedDataProvider data(pBytes, pSize);  // takes numbers from the end; the pixels are at the start
  const int width = data.ConsumeIntegralInRange(1, kLargest);
  const int height = data.ConsumeIntegralInRange(1, kLargest);
  const tBitmap output = TakeBitmap(width, height, data);
  cBitmapXYZ32 input(width, height);
  FillPicture(input, pBytes, pSize);
  try {
    Run({input, *output}, data);
  } catch (const cArgumentException&) {     // NaN for Microcontrast or Lighting
  } catch (const cOutOfMemoryException&) {  // sliders far beyond their range ask for fine grids
  } catch (const std::bad_alloc&) {         // which there may be no memory for
  }
  return 0;
}
