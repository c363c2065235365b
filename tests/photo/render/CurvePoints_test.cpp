#include "photo/render/CurvePoints.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <utility>

namespace {

using Photo::CloseCircle;
using Photo::ParseHuePoints;

TEST(CurvePoints, AreSortedByHueAndMayHaveBlanks) {
  const Photo::tHuePoints points = ParseHuePoints("270:1, 0 : 0.25,90.5:5e-1");
  ASSERT_EQ(points.size(), 3u);
  const float expected[][2] = {{0.0f, 0.25f}, {90.5f, 0.5f}, {270.0f, 1.0f}};
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(points[i].fX, expected[i][0]);
    EXPECT_EQ(points[i].fY, expected[i][1]);
  }
}

TEST(CurvePoints, NameWhatIsWrongWhere) {
  std::string many = "0:0";
  for (int i = 1; i <= 100; ++i) many.append(",").append(std::to_string(i)).append(":0");
  const std::pair<std::string, const char*> cases[] = {
      {"120", "'120' is not HUE:VALUE"},
      {"", "'' is not HUE:VALUE"},
      {"0:1,361:1", "the hue of '361:1' is not a number from 0 to 360"},
      {"-1:1", "the hue of '-1:1' is not a number from 0 to 360"},
      {"0:1.5", "the value of '0:1.5' is not a number from 0 to 1"},
      {"0:nan", "the value of '0:nan' is not a number from 0 to 1"},
      {"9:0.1x", "the value of '9:0.1x' is not a number from 0 to 1"},
      {"9:1,9.0:0", "the hue 9 has two values"},
      {many, "has 101 points; a curve takes 1 to 100"}};
  for (const auto& [text, message] : cases) {
    try {
      ParseHuePoints(text);
      ADD_FAILURE() << text;
    } catch (const std::invalid_argument& exception) {
      EXPECT_STREQ(exception.what(), message);
    }
  }
  EXPECT_EQ(ParseHuePoints(many.substr(0, many.rfind(','))).size(), 100u);
}

/// The value at 0 and 360 degrees must be the same, or a seam shows in reds.
TEST(CurvePoints, MeetAtTheSeamOfTheCircle) {
  const std::pair<const char*, float> cases[] = {{"0:0.2", 0.2f},
                                                 {"360:0.3,90:1", 0.3f},
                                                 {"60:0.5,300:0.1", 0.3f},  // half way
                                                 {"30:0.4,270:0", 0.3f}};
  for (const auto& [text, value] : cases) {
    const Photo::tHuePoints closed = CloseCircle(ParseHuePoints(text));
    EXPECT_EQ(closed.front().fX, 0.0f) << text;
    EXPECT_EQ(closed.back().fX, 360.0f) << text;
    EXPECT_NEAR(closed.front().fY, value, 1e-7f) << text;
    EXPECT_EQ(closed.front().fY, closed.back().fY) << text;
  }
  EXPECT_EQ(CloseCircle(ParseHuePoints("0:0.2,360:0.9")).back().fY, 0.9f);  // both are given: both stay
}

TEST(CurvePoints, MakeCurvesOverHuePartsOfTheCircle) {
  const auto curve =
      Photo::MakeHueCurve(ParseHuePoints("90:1,180:0"), TmEngine::eSplineInterpolationMode_Linear);
  EXPECT_NEAR(curve->Evaluate(0.25f), 1.0f, 1e-6f);
  EXPECT_NEAR(curve->Evaluate(0.375f), 0.5f, 1e-6f);
  const auto neutral = Photo::MakeHueCurve({}, TmEngine::eSplineInterpolationMode_FiniteDifference);
  for (const float hue : {0.0f, 0.3f, 1.0f}) EXPECT_NEAR(neutral->Evaluate(hue), 0.5f, 1e-7f) << hue;
}

}  // namespace
