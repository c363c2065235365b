// The equaliser on pictures of any size and depth, with any curves and colour spaces.

#include "engine/base/cException.h"
#include "engine/cColorEqRenderer.h"
#include "fuzz/FuzzPicture.h"

using namespace TmEngine;

namespace {

void Run(cBitmapLDR& pInput, cBitmapLDR& pOutput, FuzzedDataProvider& pData) {
  const auto renderer = std::make_unique<cColorEqRenderer>();
  renderer->SetInput(&pInput);
  renderer->SetOutput(&pOutput);
  sHueCurves(pData).HandTo(*renderer);
  RenderOrCancel(*renderer, pData);
  const sHueCurves curves(pData);
  curves.HandTo(*renderer);
  RenderOrCancel(*renderer, pData);
  if (&pInput == &pOutput) return renderer->Render();

  const auto fresh = std::make_unique<cColorEqRenderer>();
  fresh->SetInput(&pInput);
  fresh->SetOutput(&pOutput);
  curves.HandTo(*fresh);
  CheckAgainst(*fresh, *renderer, pOutput);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t pSize) {
  FuzzedDataProvider data(pBytes, pSize);  // takes numbers from the end; the pixels are at the start
  const int width = data.ConsumeIntegralInRange(1, 40);
  const int height = data.ConsumeIntegralInRange(1, data.ConsumeBool() ? 2 : 40);
  const tBitmap input = TakeBitmap(width, height, data);
  const tBitmap output = TakeBitmap(width + (data.ConsumeIntegralInRange(0, 31) == 0 ? 1 : 0), height, data);
  std::copy_n(pBytes, std::min(pSize, CountBytes(*input)), input->GetBitmapData());
  try {
    Run(*input, data.ConsumeBool() ? *output : *input, data);
  } catch (const cInvalidOperationException&) {
    Require(output->GetWidth() != width, "only sizes that differ are refused");
  }
  return 0;
}
