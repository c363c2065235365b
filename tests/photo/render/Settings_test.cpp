#include "photo/render/Settings.h"

#include <gtest/gtest.h>

#include "engine/ToneSliders.h"

namespace {

using Photo::sSettings;
using Photo::sSettingsChange;

TEST(Settings, ChangesLeaveWhatTheyDoNotName) {
  sSettingsChange change;
  change.fSliders[3] = 7.0f;  // white-clip
  sSettings settings{.fStrength = 5.0f, .fWrap = Photo::eWrap::kNone};
  const sSettings before = settings;
  Apply(change, settings);
  EXPECT_EQ(settings.fWhiteClip, 7.0f);
  settings.fWhiteClip = before.fWhiteClip;
  EXPECT_EQ(settings, before);

  sSettingsChange later;
  later.fSliders[3] = 9.0f;
  later.fWrap = Photo::eWrap::kHorizontal;
  change.fSliders[0] = 1.0f;
  Apply(later, change);
  EXPECT_EQ(change.fSliders[0], 1.0f);
  EXPECT_EQ(change.fSliders[3], 9.0f);
  EXPECT_EQ(change.fWrap, Photo::eWrap::kHorizontal);
}

TEST(Settings, AChangeToAllOfThemCarriesEverySlider) {
  sSettings other{.fWrap = Photo::eWrap::kHorizontal};
  float value = 1.0f;
  for (const Photo::sSlider& slider : Photo::GetSliders()) other.*slider.fField = value++;
  sSettings settings;
  Apply(ChangeTo(other), settings);
  EXPECT_EQ(settings, other);
  EXPECT_EQ(other.fSaturation, 8.0f);  // the sliders are eight different fields
}

TEST(Settings, DefaultsAreWithinTheSlidersRanges) {
  ASSERT_EQ(Photo::GetSliders().size(), sSettingsChange::kSliders);
  for (const Photo::sSlider& slider : Photo::GetSliders()) {
    EXPECT_GE(sSettings().*slider.fField, slider.fLowest) << slider.fName;
    EXPECT_LE(sSettings().*slider.fField, slider.fHighest) << slider.fName;
  }
}

TEST(Settings, NumbersAndWrapsReadBackFromTheirTexts) {
  EXPECT_EQ(Photo::ToText(70.0f), "70");
  EXPECT_EQ(Photo::ToText(0.1f), "0.1");
  EXPECT_EQ(Photo::ToText(0.123456789f), "0.12345679");
  for (const float number : {-3.3333333f, 1e-7f, 150.5f}) EXPECT_EQ(std::stof(Photo::ToText(number)), number);
  for (const Photo::eWrap wrap : {Photo::eWrap::kNone, Photo::eWrap::kHorizontal, Photo::eWrap::kAuto}) {
    EXPECT_EQ(Photo::FindWrap(Photo::GetWrapName(wrap)), wrap);
  }
  EXPECT_FALSE(Photo::FindWrap("vertical").has_value());
}

/// A slider that reaches the engine in another one's place changes pictures without an error.
TEST(Settings, EachSliderReachesItsOwnParameter) {
  const sSettings settings{-30.0f, 4.0f, 12.0f, 60.0f, 2.0f, -3.0f, 35.0f, 10.0f};
  const TmEngine::sToneParameters parameters = MapToParameters(settings, true);
  const TmEngine::sToneParameters expected = TmEngine::MapSliders({-30.0f, 4.0f, 12.0f, 60.0f, 2.0f, -3.0f});
  EXPECT_EQ(parameters.fStrength, expected.fStrength);
  EXPECT_EQ(parameters.fContrast, 35.0f);
  EXPECT_TRUE(parameters.fHorizontalWrap);
  EXPECT_FALSE(MapToParameters(settings, false).fHorizontalWrap);
}

}  // namespace
