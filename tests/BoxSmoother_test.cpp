#include "engine/stages/BoxSmoother.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "tests/Pictures.h"

namespace TmEngine {
namespace {

using tFloats = std::vector<float>;

/// One line as the definition has it: every tap summed for every sample.
tFloats DirectLine(const tFloats& pFrom, int pReach, float pShort) {
  const int count = static_cast<int>(pFrom.size());
  tFloats to(pFrom.size());
  for (int i = 0; i < count; ++i) {
    double sum = 0.0, weight = 0.0;
    for (int j = std::max(i - pReach, 0); j <= std::min(i + pReach, count - 1); ++j) {
      const double share = j == i - pReach || j == i + pReach ? 1.0 - static_cast<double>(pShort) : 1.0;
      sum += share * static_cast<double>(pFrom[static_cast<std::size_t>(j)]);
      weight += share;
    }
    to[static_cast<std::size_t>(i)] = static_cast<float>(sum / weight);
  }
  return to;
}

tFloats Transposed(const tFloats& pPlane, int pWidth) {
  tFloats plane;
  for (std::size_t i = 0, width = static_cast<std::size_t>(pWidth), height = pPlane.size() / width;
       i < pPlane.size(); ++i)
    plane.push_back(pPlane[i % height * width + i / height]);
  return plane;
}

tFloats Direct(tFloats pPlane, int pWidth, int pHeight, float pSigma) {
  const float radius = pSigma <= 1.0f ? pSigma - pSigma * 0.58f : pSigma - 0.58f;
  const int reach = static_cast<int>(std::ceil(radius));
  for (int pass = 0; pass < 6; ++pass) {  // rows, then columns as rows
    for (auto row = pPlane.begin(); row != pPlane.end(); row += pWidth) {
      const tFloats smoothed =
          DirectLine(tFloats(row, row + pWidth), reach, static_cast<float>(reach) - radius);
      std::copy(smoothed.begin(), smoothed.end(), row);
    }
    pPlane = Transposed(pPlane, pWidth);
    std::swap(pWidth, pHeight);
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
    for (const float sigma : {0.01f, 0.5f, 1.0f, 1.5f, 2.58f, 7.0f}) {
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

TEST(BoxSmoother, GivesAKnownFigure) {
  tFloats box = {0.0f, 0.0f, 1.0f, 0.0f, 0.0f};
  SmoothWithBox(box.data(), box.data(), 5, 1, 1.58f);
  EXPECT_NEAR(box[2], 0.2592f, 2e-4f);  // three boxes of three, with shorter windows at the ends
}

TEST(BoxSmoother, CopiesWithoutARadiusAndEndsInTheMeanWithAHugeOne) {
  const tFloats from = RandomPlane(6 * 5);
  for (const float sigma : {0.0f, -3.0f, std::numeric_limits<float>::quiet_NaN()}) {
    tFloats to(from.size());
    SmoothWithBox(from.data(), to.data(), 6, 5, sigma);
    EXPECT_EQ(to, from);
  }
  double mean = 0.0;
  for (const float value : from) mean += static_cast<double>(value) / 30.0;
  for (const float sigma : {8.0f, 1e20f, std::numeric_limits<float>::infinity()}) {
    tFloats to(from.size());
    SmoothWithBox(from.data(), to.data(), 6, 5, sigma);
    for (const float value : to) EXPECT_NEAR(value, mean, 1e-5);
  }
}

}  // namespace
}  // namespace TmEngine
