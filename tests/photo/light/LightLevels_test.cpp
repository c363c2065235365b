#include "photo/light/LightLevels.h"

#include <gtest/gtest.h>

#include <bit>

namespace {

/// pSky groups of ordinary light, and pSpots of pLight.
float FindBound(int pSky, int pSpots, float pLight) {
  Photo::cLightLevels levels;
  for (int i = 0; i < pSky; ++i)
    levels.Add(std::bit_cast<std::int32_t>(0.01f * static_cast<float>(i % 90 + 1)));
  for (int i = 0; i < pSpots; ++i) levels.Add(std::bit_cast<std::int32_t>(pLight));
  return levels.FindBound();
}

TEST(LightLevels, OutliersAreFewAndFarAboveAllOtherLight) {
  const struct {
    int fSpots;
    float fLight;
    bool fIsOutlier;
  } cases[] = {{1, 1e9f, true},      {4, 1e20f, true}, {5, 1e20f, true},
               {6, 1e20f, false},    {1, 1e6f, false},  // the sun: less than 2^24 above its sky
               {1, 65504.0f, false}, {1, 9e29f, true}};
  for (const auto& row : cases) {
    const float bound = FindBound(1000, row.fSpots, row.fLight);
    EXPECT_EQ(row.fLight > bound, row.fIsOutlier) << row.fSpots << ' ' << row.fLight;
    EXPECT_GE(bound, 0.9f);  // ordinary light always is
  }
  EXPECT_LT(FindBound(7, 0, 0.0f), 1.01f * Photo::cLightLevels::kLargestSample);
  EXPECT_GT(1e20f, FindBound(31, 1, 1e20f));  // a small picture may have a few as well
  EXPECT_LT(1e20f, FindBound(6, 1, 1e20f));
}

TEST(LightLevels, SamplesThatNoMatrixBearsAreNeverLight) {
  EXPECT_EQ(FindBound(10, 1000, 1e37f), Photo::cLightLevels::kLargestSample);
}

}  // namespace
