#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/curve/cHermiteSpline.h"
#include "engine/math/cVector.h"

namespace Photo {

/// Control points of a curve over hue: x the hue in degrees from 0 to 360, y from 0 to 1, neutral at 0.5.
using tHuePoints = std::vector<TmEngine::cVector2>;

/// The curves of the equaliser; one without points is neutral.
struct sHueCurveOptions {
  tHuePoints fHueShift;
  tHuePoints fSaturation;
  tHuePoints fLightness;
  TmEngine::eSplineInterpolationMode fMode = TmEngine::eSplineInterpolationMode_FiniteDifference;

  bool AreNeutral() const { return fHueShift.empty() && fSaturation.empty() && fLightness.empty(); }
};

/// Parses "HUE:VALUE,HUE:VALUE,..." and sorts by hue. Throws std::invalid_argument with what is wrong where.
tHuePoints ParseHuePoints(const std::string& pText);

/// The points with both ends of the circle: an end that is missing gets the other's value, or, where both are
/// missing, the value that the line from the last point to the first has there. No points: 0.5 at both ends.
tHuePoints CloseCircle(const tHuePoints& pPoints);

/// The engine's curve, over hue / 360.
std::unique_ptr<TmEngine::cHermiteSpline> MakeHueCurve(const tHuePoints& pPoints,
                                                       TmEngine::eSplineInterpolationMode pMode);

}  // namespace Photo
