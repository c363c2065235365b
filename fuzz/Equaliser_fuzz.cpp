// The equaliser on pictures of any size and depth, with any curves and colour spaces.

#include <algorithm>

#include "engine/cBitmapLDR.h"
#include "engine/cColorEqRenderer.h"
#include "engine/cException.h"
#include "export/OutputBitmap.h"
#include "fuzz/FuzzCurve.h"

using namespace TmEngine;

namespace {

using tBitmap = std::unique_ptr<cBitmapLDR>;

std::unique_ptr<cHermiteSpline> TakeCurve(FuzzedDataProvider& pData) {
  auto curve = std::make_unique<cHermiteSpline>();
  const int count = pData.ConsumeIntegralInRange(2, 6);
  curve->SetControlPoints(TakeMode(pData), count, TakePoints(pData, count).data());
  return curve;
}

std::unique_ptr<cColorSpace> TakeColorSpace(FuzzedDataProvider& pData) {
  const int id = pData.ConsumeIntegralInRange(0, 3);
  if (id < 3) return std::unique_ptr<cColorSpace>(cColorSpace::FromID(static_cast<eColorSpaceID>(id)));
  float n[9];
  for (float& number : n) number = TakeFloat(pData, 0.0f, 1.0f);
  return std::make_unique<cColorSpace_GenericRGB>(cVector2(n[0], n[1]), cVector2(n[2], n[3]),
                                                  cVector2(n[4], n[5]), cVector2(n[6], n[7]), 4.0f * n[8]);
}

/// Its block, padding included.
std::size_t CountBytes(const cBitmapLDR& pBitmap) {
  return static_cast<std::size_t>(pBitmap.GetStride()) * static_cast<std::size_t>(pBitmap.GetHeight());
}

tBitmap TakeBitmap(int pWidth, int pHeight, FuzzedDataProvider& pData) {
  const int depth = pData.ConsumeBool() ? 8 : 16;
  tBitmap bitmap = MakeOutputBitmap(pWidth, pHeight, depth, eColorSpaceID_sRGB);
  bitmap->SetColorSpace(TakeColorSpace(pData).get());
  std::fill_n(bitmap->GetBitmapData(), CountBytes(*bitmap), static_cast<unsigned char>(0));
  return bitmap;
}

void Render(cColorEqRenderer& pRenderer, FuzzedDataProvider& pData) {
  const auto hue = TakeCurve(pData);
  const auto saturation = TakeCurve(pData);
  pRenderer.SetHueCurves(hue.get(), saturation.get(), TakeCurve(pData).get());
  bool cancel = pData.ConsumeIntegralInRange(0, 7) == 0;
  bool aborted = false;
  pRenderer.Render(&cancel, &aborted);
  Require(cancel || !aborted, "only a cancelled run is aborted");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t pSize) {
  FuzzedDataProvider data(pBytes, pSize);  // takes numbers from the end; the pixels stand at the start
  const int width = data.ConsumeIntegralInRange(1, 40);
  const int height = data.ConsumeIntegralInRange(1, data.ConsumeBool() ? 2 : 40);
  const tBitmap input = TakeBitmap(width, height, data);
  const tBitmap output = TakeBitmap(width + (data.ConsumeIntegralInRange(0, 31) == 0 ? 1 : 0), height, data);
  std::copy_n(pBytes, std::min(pSize, CountBytes(*input)), input->GetBitmapData());
  const auto renderer = std::make_unique<cColorEqRenderer>();
  renderer->SetInput(input.get());
  renderer->SetOutput(data.ConsumeBool() ? output.get() : input.get());
  try {
    Render(*renderer, data);
    Render(*renderer, data);
    renderer->Render();
  } catch (const cInvalidOperationException&) {
    Require(output->GetWidth() != width, "only sizes that differ are refused");
  }
  return 0;
}
