#include "engine/stages/BaseLayer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <new>
#include <vector>

#include "engine/stages/BilateralGrid.h"
#include "engine/stages/StageRun.h"
#include "tests/Numbers.h"
#include "tests/Pictures.h"

namespace TmEngine {
namespace {

using tFloats = std::vector<float>;

struct sSettings {
  float fSigmaS = 4.0f;
  float fSigmaR = 0.3f;
  bool fWrap = false;
  float fLocalContrast = 0.0f;
  bool fCancel = false;
};

tFloats Filter(const tFloats& pFrom, int pWidth, int pHeight, const sSettings& pSettings,
               bool pIsDone = true) {
  float min = 1e30f, max = -1e30f;  // a NaN counts as neither
  for (const float value : pFrom) {
    min = value < min ? value : min;
    max = value > max ? value : max;
  }
  tFloats to(pFrom.size(), -99.0f);
  sLayerStatistics statistics;
  EXPECT_EQ(pIsDone, FormBaseLayer({&pSettings.fCancel}, pFrom.data(), to.data(), pWidth, pHeight,
                                   {pSettings.fSigmaS, pSettings.fSigmaR, min, max, pSettings.fLocalContrast,
                                    pSettings.fWrap},
                                   statistics));
  return to;
}

/// Dark left, bright right, with a little texture.
tFloats Edge(int pWidth, int pHeight) {
  cRandom random(3);
  tFloats plane;
  for (int i = 0; i < pWidth * pHeight; ++i) {
    plane.push_back((i % pWidth < pWidth / 2 ? -1.0f : 2.0f) + 0.05f * random.Unit());
  }
  return plane;
}

TEST(BilateralGrid, SmoothsTextureAndKeepsEdges) {
  const int width = 60, height = 20;
  const tFloats from = Edge(width, height);
  const tFloats base = Filter(from, width, height, {});
  for (int i = 0; i < width * height; ++i) {
    const float level = i % width < width / 2 ? -1.0f : 2.0f;
    EXPECT_NEAR(base[static_cast<std::size_t>(i)], level + 0.025f, 0.03f) << i;
  }
}

TEST(BilateralGrid, LetsOneEdgeSeeTheOtherOnlyWithWrap) {
  const int width = 64, height = 8;
  tFloats lit(static_cast<std::size_t>(width * height), 0.0f);
  for (int y = 0; y < height; ++y) lit[static_cast<std::size_t>(y * width + width - 1)] = 0.2f;
  // With the range cell larger than the step, the lit column raises its neighbours.
  const auto left = [&](bool pWrap) { return Filter(lit, width, height, {4.0f, 1.0f, pWrap})[0]; };
  EXPECT_EQ(left(false), 0.0f);
  EXPECT_GT(left(true), 0.002f);
}

TEST(BilateralGrid, TakesNoLongerForWrapInTallPictures) {
  const int height = 20000;
  const tFloats from = Edge(1, height);
  const auto seconds = [&](bool pWrap) {
    const std::clock_t start = std::clock();
    Filter(from, 1, height, {500.0f, 0.3f, pWrap});
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  };
  seconds(false);
  EXPECT_LT(seconds(true),
            20.0 * seconds(false));  // a margin of three cells instead of three widths: 500 times
}

/// Cells: 7 * 7 * (7 + the range in units of pSigmaR = 1) here, as the spatial cells are larger than any
/// picture.
TEST(BilateralGrid, IsBoundedByThePictureAndWhatSlidersAreMeantFor) {
  const auto isWithin = [](int pWidth, int pHeight, float pRange) {
    return cBilateralGrid::IsWithinBounds(pWidth, pHeight, 1e9f, 1.0f, 0.0f, pRange);
  };
  EXPECT_TRUE(isWithin(1, 1, 2040809.0f));
  EXPECT_FALSE(isWithin(1, 1, 2040810.0f));
  EXPECT_TRUE(isWithin(3000, 4000, 2040809.0f));
  EXPECT_FALSE(isWithin(3000, 4000, 2040810.0f));
  EXPECT_TRUE(isWithin(4000, 4000, 2612237.0f));
  EXPECT_FALSE(isWithin(4000, 4000, 2612238.0f));
  for (const float range : {kNaN, kInfinity}) EXPECT_FALSE(isWithin(4000, 4000, range));

  // Half as far out again as sliders go, over all luminances of floats; and the finest cells of any slider.
  const int sizes[][2] = {{1, 1},       {9, 6},         {100, 100},  {1001, 1001},
                          {6000, 4000}, {20000, 20000}, {748980, 1}, {1, 748980}};
  for (const auto& [width, height] : sizes) {
    const float side = static_cast<float>(std::max(width, height));
    EXPECT_TRUE(cBilateralGrid::IsWithinBounds(width, height, side * 0.0025f, 0.14f, -38.54f, 38.54f))
        << width;
    EXPECT_EQ(cBilateralGrid::IsWithinBounds(width, height, side * 0.001f, 0.01f, 0.0f, 5.0f),
              width == 1 || height == 1 || width == 20000)
        << width;
  }
}

TEST(BilateralGrid, SmoothsOnceMoreForLocalContrast) {
  tFloats from(3000, 0.0f);
  for (std::size_t i = 1500; i < from.size(); ++i) from[i] = 3.0f;
  const tFloats base = Filter(from, 3000, 1, {});
  const tFloats smoothed = Filter(from, 3000, 1, {4.0f, 0.3f, false, 2.0f});
  EXPECT_EQ(base[1499], 0.0f);
  EXPECT_GT(smoothed[1499], 0.8f);
  EXPECT_EQ(smoothed[1400], base[1400]);
}

TEST(BilateralGrid, StopsWhenCancelled) {
  EXPECT_EQ(Filter(Edge(6, 4), 6, 4, {4.0f, 0.3f, false, 0.0f, true}, false), tFloats(24, -99.0f));
}

TEST(BilateralGrid, TakesWhatIsNotANumberAndRefusesRangesWithoutEnd) {
  tFloats from = Edge(12, 12);
  from[30] = kNaN;
  Filter(from, 12, 12, {});
  from[30] = kInfinity;
  EXPECT_THROW(Filter(from, 12, 12, {}), std::bad_alloc);
  EXPECT_THROW(Filter(tFloats(4, kNaN), 2, 2, {5.0f, kNaN}), std::bad_alloc);
  EXPECT_THROW(Filter(Edge(12, 12), 12, 12, {1e-6f, 1e-6f}), std::bad_alloc);
  // 2^23 * 2^23 * 2^18 cells: a product of 64 bits is 0.
  EXPECT_THROW(Filter({0.0f, 1.0f, 0.0f, 1.0f}, 2, 2, {1.0f / 8388601.0f, 1.0f / 262137.0f}), std::bad_alloc);
}

}  // namespace
}  // namespace TmEngine
