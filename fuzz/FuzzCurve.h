#pragma once

#include <memory>
#include <vector>

#include "engine/curve/cHermiteSpline.h"
#include "fuzz/FuzzInput.h"

inline TmEngine::cVector2 TakePoint(FuzzedDataProvider& pData) {
  const float x = TakeFloat(pData, -0.1f, 1.1f);
  return {x, TakeFloat(pData, -0.1f, 1.1f)};
}

inline std::vector<TmEngine::sControlPoint> TakePoints(FuzzedDataProvider& pData, int pCount) {
  std::vector<TmEngine::sControlPoint> points(static_cast<std::size_t>(pCount));
  for (TmEngine::sControlPoint& point : points) {
    point.fPoint = TakePoint(pData);
    if (!pData.ConsumeBool()) continue;
    point.fNextTangent = TakePoint(pData);
    point.fPreviousTangent = TakePoint(pData);
  }
  return points;
}

/// Any mode, including invalid ones.
inline TmEngine::eSplineInterpolationMode TakeMode(FuzzedDataProvider& pData) {
  return static_cast<TmEngine::eSplineInterpolationMode>(pData.ConsumeIntegralInRange(-1, 4));
}
