#include "engine/stages/ExposureScale.h"

#include <numbers>

#include "engine/math/Elementary.h"

namespace TmEngine {
namespace {

/// A bump over the exponent: 0 at 0 and from 1 on, 1 at one half.
double NormalisationWeight(double pExponent) {
  constexpr double kPi = std::numbers::pi;
  const double clamped = pExponent < 1.0 ? pExponent : 1.0;
  return Pow(Cos(clamped * kPi - kPi / 2.0), clamped < 0.5 ? 4.0 : 0.5);
}

}  // namespace

sExposureScales ExposureScales(float pExponent, float pLargestLuminance, float pBaseMax) {
  const auto k = static_cast<double>(pExponent);
  const double middleGrey = Pow(0.5, 2.2);
  const auto grey = static_cast<double>(static_cast<float>(middleGrey / Pow(middleGrey, k)));
  const double normalise =
      1.0 / static_cast<double>(static_cast<float>(Pow(static_cast<double>(pLargestLuminance), k)));
  const double normaliseBase = 1.0 / Pow(Pow(10.0, static_cast<double>(pBaseMax)), k);
  const double weight = NormalisationWeight(k);
  sExposureScales scales{static_cast<float>(weight * normalise + (1.0 - weight) * grey),
                         static_cast<float>(weight * normaliseBase + (1.0 - weight) * grey)};

  // Up to a third of a stop darker as compression sets in.
  float compression = (1.0f - pExponent) * 2.0f;
  if (compression < 0.0f) compression = 0.0f;
  if (compression > 1.0f) compression = 1.0f;
  const auto c = static_cast<double>(compression);
  const double darkening = Pow(2.0, -0.35) * c + (1.0 - c);
  scales.fInput = static_cast<float>(static_cast<double>(scales.fInput) * darkening);
  scales.fBase = static_cast<float>(static_cast<double>(scales.fBase) * darkening);
  return scales;
}

}  // namespace TmEngine
