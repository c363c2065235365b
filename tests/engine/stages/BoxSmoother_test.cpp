#include "engine/stages/BoxSmoother.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <vector>

#include "tests/Numbers.h"
#include "tests/Pictures.h"

namespace TmEngine {
namespace {

using tFloats = std::vector<float>;

/// One line of pCount samples, pStep apart, as the definition has it: every tap summed for every sample.
void DirectLine(const float* pFrom, float* pTo, int pCount, int pStep, float pRadius) {
  const int reach = static_cast<int>(std::ceil(pRadius));
  const double end = 1.0 - static_cast<double>(static_cast<float>(reach) - pRadius);
  for (int i = 0; i < pCount; ++i) {
    double sum = 0.0, weight = 0.0;
    for (int j = std::max(i - reach, 0); j <= std::min(i + reach, pCount - 1); ++j) {
      const double share = std::abs(j - i) == reach ? end : 1.0;
      sum += share * static_cast<double>(pFrom[j * pStep]);
      weight += share;
    }
    pTo[i * pStep] = static_cast<float>(sum / weight);
  }
}

tFloats Direct(tFloats pPlane, int pWidth, int pHeight, float pSigma) {
  const float radius = pSigma <= 1.0f ? pSigma - pSigma * 0.58f : pSigma - 0.58f;
  tFloats rows(pPlane);
  for (int i = 0; i < 3; ++i) {
    for (int at = 0; at < pWidth * pHeight; at += pWidth) {
      DirectLine(pPlane.data() + at, rows.data() + at, pWidth, 1, radius);
    }
    for (int x = 0; x < pWidth; ++x) DirectLine(rows.data() + x, pPlane.data() + x, pHeight, pWidth, radius);
  }
  return pPlane;
}

tFloats RandomPlane(int pCount) {
  cRandom random(7);
  tFloats plane;
  for (int i = 0; i < pCount; ++i) plane.push_back(random.Unit() * 40.0f - 30.0f);
  return plane;
}

TEST(BoxSmoother, AgreesWithTheDirectSum) {
  for (const auto& [width, height] : {std::pair{1, 1}, {1, 9}, {13, 1}, {17, 11}, {4, 40}}) {
    for (const float sigma : {0.01f, 0.5f, 0.75f, 1.0f, 1.5f, 2.58f, 7.0f}) {
      const tFloats from = RandomPlane(width * height);
      const tFloats expected = Direct(from, width, height, sigma);
      tFloats to(from.size(), -1.0f);
      SmoothWithBox(from.data(), to.data(), width, height, sigma);
      for (std::size_t i = 0; i < to.size(); ++i)
        ASSERT_NEAR(to[i], expected[i], 2e-5f) << width << " " << sigma;
      tFloats inPlace = from;
      SmoothWithBox(inPlace.data(), inPlace.data(), width, height, sigma);
      EXPECT_EQ(inPlace, to);
    }
  }
}

TEST(BoxSmoother, CopiesWithoutARadiusAndEndsInTheMeanWithAHugeOne) {
  const tFloats from = RandomPlane(6 * 5);
  for (const float sigma : {0.0f, -3.0f, kNaN}) {
    tFloats to(from.size());
    SmoothWithBox(from.data(), to.data(), 6, 5, sigma);
    EXPECT_EQ(to, from);
  }
  double mean = 0.0;
  for (const float value : from) mean += static_cast<double>(value) / 30.0;
  for (const float sigma : {8.0f, 1e20f, kInfinity}) {
    tFloats to(from.size());
    SmoothWithBox(from.data(), to.data(), 6, 5, sigma);
    for (const float value : to) EXPECT_NEAR(value, mean, 1e-5);
  }
}

TEST(BoxSmoother, StopsBetweenTheRowsThatItWrites) {
  // The flag lies in the result, as the low byte of the fourth row: the pass over the columns sets it.
  const tFloats from(4 * 8, std::numeric_limits<float>::denorm_min());
  tFloats to(from.size(), 0.0f);
  EXPECT_FALSE(
      SmoothWithBox(from.data(), to.data(), 4, 8, 2.0f, reinterpret_cast<const bool*>(&to[std::size_t{12}])));
  EXPECT_EQ(std::count(to.begin(), to.end(), 0.0f), 16);
}

}  // namespace
}  // namespace TmEngine
