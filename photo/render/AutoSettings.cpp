#include "photo/render/AutoSettings.h"

#include <algorithm>
#include <cmath>

#include "engine/stages/ToneTables.h"

namespace Photo {
namespace {

/// The strength that compresses large contrasts to pExponent of their decades.
float StrengthForExponent(double pExponent) {
  // both maps are linear where the base is compressed
  const auto exponentAt = [](float pStrength) {
    sSettings settings;
    settings.fStrength = pStrength;
    return static_cast<double>(TmEngine::GlobalExponent(MapToParameters(settings, false).fStrength));
  };
  const double atNone = exponentAt(0.0f);
  const double atFull = exponentAt(100.0f);
  const double strength = 100.0 * (pExponent - atNone) / (atFull - atNone);
  return static_cast<float>(std::clamp(std::round(strength), 0.0, 100.0));
}

}  // namespace

sSettings SuggestSettings(const sPictureStatistics& pStatistics) {
  sSettings settings;
  if (pStatistics.CountPositive() == 0) return settings;
  const double white = pStatistics.GetQuantile(1.0 - static_cast<double>(settings.fWhiteClip) / 20.0 / 100.0);
  const double decades = white - pStatistics.fLogMean;  // from the middle of the picture to its white
  if (!(decades > 0.0)) return settings;

  // Half the way, in logarithms, from the default's compression to one that puts the middle 0.5 decades below
  // white, near half of the lightness: what was dark stays a little darker.
  settings.fStrength = StrengthForExponent(0.4 / std::sqrt(decades));
  // A wide range is already steep enough; the curve's shoulders would cost it colours.
  const double contrast = static_cast<double>(settings.fContrast) - 15.0 * (decades - 1.5);
  settings.fContrast =
      static_cast<float>(std::clamp(std::round(contrast), 0.0, static_cast<double>(settings.fContrast)));
  return settings;
}

}  // namespace Photo
