#pragma once

#include <algorithm>
#include <memory>
#include <vector>

#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapBGR8.h"
#include "fuzz/FuzzCurve.h"

using TmEngine::cBitmapLDR;
using TmEngine::cColorSpace;
using TmEngine::cHermiteSpline;
using TmEngine::cVector2;
using TmEngine::eColorSpaceID;

using tBitmap = std::unique_ptr<cBitmapLDR>;

inline std::unique_ptr<cHermiteSpline> TakeCurve(FuzzedDataProvider& pData) {
  auto curve = std::make_unique<cHermiteSpline>();
  const int count = pData.ConsumeIntegralInRange(2, 6);
  curve->SetControlPoints(TakeMode(pData), count, TakePoints(pData, count).data());
  return curve;
}

/// Curves over hue: shift, saturation, lightness.
struct sHueCurves {
  explicit sHueCurves(FuzzedDataProvider& pData)
      : fShift(TakeCurve(pData)), fSaturation(TakeCurve(pData)), fLightness(TakeCurve(pData)) {}
  template <class tRenderer>
  void HandTo(tRenderer& pRenderer) const {
    pRenderer.SetHueCurves(fShift.get(), fSaturation.get(), fLightness.get());
  }

  std::unique_ptr<cHermiteSpline> fShift, fSaturation, fLightness;
};

inline std::unique_ptr<cColorSpace> TakeColorSpace(FuzzedDataProvider& pData) {
  const int id = pData.ConsumeIntegralInRange(0, 3);
  if (id < 3) return std::unique_ptr<cColorSpace>(cColorSpace::FromID(static_cast<eColorSpaceID>(id)));
  float n[9];
  for (float& number : n) number = TakeFloat(pData, 0.0f, 1.0f);
  return std::make_unique<TmEngine::cColorSpace_GenericRGB>(
      cVector2(n[0], n[1]), cVector2(n[2], n[3]), cVector2(n[4], n[5]), cVector2(n[6], n[7]), 4.0f * n[8]);
}

/// The bytes of an image, padding included.
inline std::size_t CountBytes(const cBitmapLDR& pBitmap) {
  return static_cast<std::size_t>(pBitmap.GetStride()) * static_cast<std::size_t>(pBitmap.GetHeight());
}

inline void Blacken(cBitmapLDR& pBitmap) {
  std::fill_n(pBitmap.GetBitmapData(), CountBytes(pBitmap), static_cast<unsigned char>(0));
}

inline tBitmap TakeBitmap(int pWidth, int pHeight, FuzzedDataProvider& pData) {
  tBitmap bitmap;
  if (pData.ConsumeBool()) {
    bitmap = std::make_unique<TmEngine::cBitmapBGR8>(pWidth, pHeight, TmEngine::eColorSpaceID_sRGB);
  } else {
    bitmap = std::make_unique<TmEngine::cBitmapBGR16>(pWidth, pHeight, TmEngine::eColorSpaceID_sRGB);
  }
  bitmap->SetColorSpace(TakeColorSpace(pData).get());
  Blacken(*bitmap);
  return bitmap;
}

inline std::vector<unsigned char> BytesOf(const cBitmapLDR& pBitmap) {
  return {pBitmap.GetBitmapData(), pBitmap.GetBitmapData() + CountBytes(pBitmap)};
}

template <class tRenderer>
void RenderOrCancel(tRenderer& pRenderer, FuzzedDataProvider& pData) {
  bool cancel = pData.ConsumeIntegralInRange(0, 7) == 0;
  bool aborted = false;
  pRenderer.Render(&cancel, &aborted);
  Require(cancel || !aborted, "only a cancelled run is aborted");
}

/// Whatever pRenderer did before, its picture is that of pFresh, which has the same images and settings.
template <class tRenderer>
void CheckAgainst(tRenderer& pFresh, tRenderer& pRenderer, cBitmapLDR& pOutput) {
  pRenderer.Render();
  const std::vector<unsigned char> picture = BytesOf(pOutput);
  Blacken(pOutput);
  pFresh.Render();
  Require(BytesOf(pOutput) == picture, "a renderer used before gives the same picture as a new one");
}
