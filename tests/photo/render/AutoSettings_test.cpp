#include "photo/render/AutoSettings.h"

#include <gtest/gtest.h>

#include <cmath>

#include "engine/stages/ToneTables.h"
#include "tests/photo/PictureOf.h"

namespace {

/// Half of the pixels at white, the others 2 pDecades below: the middle is pDecades below white.
Photo::sPictureStatistics Measure(double pDecades) {
  const auto dark = static_cast<float>(std::pow(10.0, -2.0 * pDecades));
  return MeasurePicture(PictureOf(4, SpreadToXYZ({1.0f, dark, dark, 1.0f})));
}

/// The rule of docs/auto.md.
TEST(AutoSettings, FollowTheDistanceOfMiddleAndWhite) {
  const struct {
    double fDecades;
    float fContrast;
  } cases[] = {{0.6, 20.0f}, {1.0, 20.0f}, {2.1, 11.0f}, {3.0, 0.0f}};
  for (const auto& row : cases) {
    const Photo::sSettings settings = SuggestSettings(Measure(row.fDecades));
    const float exponent = TmEngine::GlobalExponent(MapToParameters(settings, false).fStrength);
    EXPECT_NEAR(exponent, 0.4 / std::sqrt(row.fDecades), 0.0017)
        << row.fDecades;  // whole steps of the slider
    EXPECT_EQ(settings.fContrast, row.fContrast) << row.fDecades;
    EXPECT_EQ(settings.fWhiteClip, Photo::sSettings().fWhiteClip);
  }
  EXPECT_EQ(SuggestSettings(Measure(0.05)).fStrength, 0.0f);   // the least
  EXPECT_EQ(SuggestSettings(Measure(9.0)).fStrength, 100.0f);  // and the most
}

TEST(AutoSettings, KeepTheDefaultsWithoutContrastOrLight) {
  for (const float light : {0.0f, 0.18f}) {
    const Photo::sPicture flat = PictureOf(2, SpreadToXYZ({light, light, light, light}));
    EXPECT_EQ(SuggestSettings(MeasurePicture(flat)), Photo::sSettings()) << light;
  }
}

}  // namespace
