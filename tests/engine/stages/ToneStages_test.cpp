#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "engine/color/cColorSpace.h"
#include "engine/image/ImageRows.h"
#include "engine/image/cBitmapU16T.h"
#include "engine/image/cBitmapXYZ32.h"
#include "engine/stages/BlackWhitePoints.h"
#include "engine/stages/ColorRows.h"
#include "engine/stages/ExposureScale.h"
#include "engine/stages/HueTable.h"
#include "engine/stages/Preparation.h"
#include "engine/stages/RowEncoder.h"
#include "engine/stages/StageRun.h"
#include "engine/stages/ToneTables.h"
#include "tests/StderrCapture.h"

namespace TmEngine {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

sLayerStatistics Layers(float pMin, float pMax, double pMean, double pMagnitude) {
  return {pMax, pMin, 0.5f, -0.5f, pMean, pMagnitude};
}

// Narrow rows lie together, and several tiles hold them; a place given twice loses a value.
TEST(ColorRun, KeepsAPlaceForEveryPixel) {
  constexpr int kWidth = 50, kHeight = 30001;
  cBitmapU16T records(kWidth, kHeight, kColorChannels);
  ASSERT_NE(records.GetTileHeight() % RowsOfRun(kWidth), 0);
  const auto valueOf = [](int pY, int pX, int pChannel) {
    return static_cast<float>((pY * kWidth + pX) * 3 + pChannel);  // below 2^24
  };
  int pixels = 0;
  ForEachRun(kWidth, kHeight, records.GetTileHeight(), nullptr, [&](int pY, int pX, int pCount) {
    EXPECT_EQ(std::exchange(pixels, pixels + pCount), pY * kWidth + pX);
    const sColorRun run = ColorRun(records, pY, pX);
    for (int i = 0; i < pCount; ++i) {
      run.fMin[i] = valueOf(pY, pX + i, 0);
      run.fMax[i] = valueOf(pY, pX + i, 1);
      run.fLuminance[i] = valueOf(pY, pX + i, 2);
      run.fHue[i] = static_cast<unsigned short>(pY + i);
    }
  });
  EXPECT_EQ(pixels, kWidth * kHeight);
  int lost = 0;
  for (int y = 0; y < kHeight; ++y) {
    const int first = RunOfRow(y, kWidth, kHeight, records.GetTileHeight()).fFirst;
    const sColorRun run = ColorRun(records, y, 0);
    for (int x = 0; x < kWidth; ++x) {
      const int inRun = (y - first) * kWidth + x;
      lost += run.fMin[x] != valueOf(y, x, 0) || run.fMax[x] != valueOf(y, x, 1) ||
              run.fLuminance[x] != valueOf(y, x, 2) ||
              run.fHue[x] != static_cast<unsigned short>(first + inRun);
    }
  }
  EXPECT_EQ(lost, 0);
}

TEST(ToneTables, FollowStrength) {
  EXPECT_FLOAT_EQ(GlobalExponent(60.0f), 0.4f);
  EXPECT_FLOAT_EQ(GlobalExponent(-34.0f), 2.02f);
  EXPECT_EQ(GlobalExponent(0.0f), 1.0f);
  auto tables = std::make_unique<sToneTables>();
  BuildToneTables(GlobalExponent(0.0f), 0.0f, Layers(-2.0f, 1.0f, -0.5, 0.1), *tables);
  EXPECT_EQ(tables->fBase[0], 0.01f);
  EXPECT_EQ(tables->fBase[kLastIndex], 10.0f);
  EXPECT_EQ(tables->fDetail[kLastIndex], static_cast<float>(std::pow(10.0, 0.5)));
  EXPECT_EQ(tables->fDetailMax, tables->fDetail[kLastIndex]);
}

TEST(ToneTables, KeepThePlainExponentWhereAMagnitudeSaysNothing) {
  auto tables = std::make_unique<sToneTables>();
  // Value and mean both 0: no relative magnitude. A mean of 0 alone: an endless one, whose power is 0.
  BuildToneTables(0.5f, 4.0f, Layers(0.0f, 2.0f, 0.0, 0.0), *tables);
  EXPECT_EQ(tables->fBase[0], 1.0f);
  EXPECT_EQ(tables->fBase[kLastIndex], 1.0f);
  // At the mean itself the exponent is the plain one; beyond it less.
  BuildToneTables(0.5f, 4.0f, Layers(0.0f, 2.0f, 2.0, 0.1), *tables);
  EXPECT_EQ(tables->fBase[kLastIndex], 10.0f);
  BuildToneTables(0.5f, 4.0f, Layers(0.0f, 2.0f, 1.0, 0.1), *tables);
  EXPECT_NEAR(tables->fBase[kLastIndex], std::pow(10.0, 2.0 * 0.5 * std::pow(2.0, -0.25)), 1e-5);
}

TEST(ExposureScale, RunsFromNoneOverNormalisedToFixedGrey) {
  EXPECT_EQ(ExposureScales(1.0f, 7.0f, 0.5f).fInput, 1.0f);
  EXPECT_FLOAT_EQ(ExposureScales(0.0f, 7.0f, 0.5f).fInput,
                  static_cast<float>(std::pow(0.5, 2.2) * std::pow(2.0, -0.35)));
  EXPECT_FLOAT_EQ(ExposureScales(0.5f, 16.0f, 2.0f).fInput, static_cast<float>(std::pow(2.0, -0.35) / 4.0));
  EXPECT_FLOAT_EQ(ExposureScales(0.5f, 16.0f, 2.0f).fBase, static_cast<float>(std::pow(2.0, -0.35) / 10.0));
}

/// A row of records with these luminances.
std::unique_ptr<cBitmapU16T> Records(std::initializer_list<float> pLuminances) {
  auto records = std::make_unique<cBitmapU16T>(static_cast<int>(pLuminances.size()), 1,
                                               static_cast<int>(kColorChannels));
  std::copy(pLuminances.begin(), pLuminances.end(), ColorRun(*records, 0, 0).fLuminance);
  return records;
}

TEST(BlackWhitePoints, ClipSharesOfThePixels) {
  const auto records = Records({0.0f, 1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f, 7.0f, 8.0f, 10.0f});
  const cLuminanceHistogram histogram(*records, {0.0f, 10.0f, 46.0}, {});
  const auto points = [&](float pBlack, float pWhite) { return histogram.Points(pBlack, pWhite); };
  EXPECT_EQ(points(0.0f, 0.0f).fBlack, 0.0f);
  EXPECT_EQ(points(0.0f, 0.0f).fWhite, 10.0f);
  EXPECT_NEAR(points(10.0f, 10.0f).fBlack, 0.0f, 1e-3f);
  EXPECT_NEAR(points(20.0f, 20.0f).fBlack, 1.0f, 1e-3f);
  EXPECT_NEAR(points(20.0f, 20.0f).fWhite, 8.0f, 1e-3f);
  EXPECT_NEAR(points(1000.0f, 1000.0f).fBlack, 10.0f, 1e-3f);
  EXPECT_NEAR(points(1000.0f, 1000.0f).fWhite, 0.0f, 1e-3f);
  EXPECT_EQ(points(kNaN, kNaN).fBlack, 0.0f);
  EXPECT_EQ(points(kNaN, kNaN).fWhite, 10.0f);
}

TEST(BlackWhitePoints, CountEqualOrBackwardRangesIntoOneBin) {
  for (const float max : {3.0f, 2.0f}) {
    const auto records = Records({3.0f, 3.0f, kNaN});
    const cLuminanceHistogram histogram(*records, {3.0f, max, 6.0}, {});
    EXPECT_EQ(histogram.Points(0.0f, 0.0f).fBlack, 3.0f);
    EXPECT_EQ(histogram.Points(0.0f, 0.0f).fWhite, 65538.0f);
    EXPECT_EQ(histogram.Points(50.0f, 0.0f).fBlack, 4.0f);
    cStderrCapture capture;
    histogram.LogPercentiles();
    EXPECT_EQ(
        capture.Text(),
        "Linear Perc1 at: 0 (4.00) -  Median: 0 (1.00)  - perc99andhigher:  0  0  0  (3.00  3.00  3.00) -  "
        "max: 255  (65538.00)\n");
  }
}

TEST(HueTable, TurnsAndSaturatesByItsCurves) {
  auto table = std::make_unique<cHueTable>();
  const auto expect = [&](unsigned short pHue, float pR, float pG, float pB) {
    EXPECT_NEAR((*table)[pHue].fR, pR, 1e-4f);
    EXPECT_NEAR((*table)[pHue].fG, pG, 1e-4f);
    EXPECT_NEAR((*table)[pHue].fB, pB, 1e-4f);
  };
  expect(0, 1, 0, 0);
  expect(65535, 1, 0, 0);
  expect(10922, 1, 1, 0);
  expect(32768, 0, 1, 1);
  std::vector<unsigned short> shift(kTableSize, 32767);
  std::vector<float> saturation(kTableSize, 0.5f);
  table->Build(shift.data(), saturation.data());
  const cHueTable neutral;
  EXPECT_EQ(std::memcmp(table.get(), &neutral, sizeof neutral), 0);
  shift.assign(kTableSize, 32767 + 21845);  // a third of the circle
  saturation.assign(kTableSize, 0.25f);
  table->Build(shift.data(), saturation.data());
  expect(0, 0.5f, 1, 0.5f);
  saturation.assign(kTableSize, 0.75f);
  table->Build(shift.data(), saturation.data());
  expect(0, -0.5f, 1, -0.5f);
}

TEST(HueTable, NeutralColorsAreThoseThatKernelsReckon) {
  const auto table = std::make_unique<cHueTable>();
  for (int i = 0; i < kTableSize; ++i) {
    float min = 0.0f, max = 1.0f, luminance = 1.0f;
    auto hue = static_cast<unsigned short>(i);
    const auto indices = [&](const float* pHues) {
      // So many steps that every bit of a small channel shows.
      std::array<int, 6> found = {};
      Kernels().fColorIndices({&min, &max, &hue, &luminance}, pHues, {1.0f, 1.0f, 0.0f}, &found[0], &found[1],
                              &found[2], 1);
      Kernels().fColorIndices({&min, &max, &hue, &luminance}, pHues, {256.0f, 1.0f, 0.0f}, &found[3],
                              &found[4], &found[5], 1);
      return found;
    };
    ASSERT_EQ(indices(nullptr), indices(table->Elements())) << i;
  }
}

/// What is prepared of one pixel in XYZ.
struct sPrepared {
  float fLuminance;
  int fHue;
  float fMin, fMax;
  float fLogLuminance;
  sLuminanceRange fRange;
};

sPrepared Prepare(float pX, float pY, float pZ) {
  cBitmapXYZ32 input(1, 1);
  input.GetBitmapData()[0] = pX;
  input.GetBitmapData()[1] = pY;
  input.GetBitmapData()[2] = pZ;
  cBitmapU16T records(1, 1, kColorChannels);
  sPrepared result = {};
  PrepareColors({}, cImageSource(input), cColorSpace_ProPhotoRGB().GetXYZToRGB(), records,
                &result.fLogLuminance, result.fRange);
  const sColorRun run = ColorRun(records, 0, 0);
  result.fLuminance = *run.fLuminance, result.fHue = *run.fHue;
  result.fMin = *run.fMin, result.fMax = *run.fMax;
  return result;
}

TEST(Preparation, KeepsLuminanceHueAndRatios) {
  const cMatrix33 toXYZ = cColorSpace_ProPhotoRGB().GetRGBToXYZ();
  const auto prepared = [&](float pR, float pG, float pB) {
    const cVector3 xyz = toXYZ * cVector3(pR, pG, pB);
    return Prepare(xyz[0], xyz[1], xyz[2]);
  };
  EXPECT_NEAR(prepared(3.0f, 1.0f, 0.0f).fHue, 65535.0 * 20.0 / 360.0, 2.0);
  EXPECT_NEAR(prepared(0.0f, 2.0f, 2.0f).fHue, 65535.0 * 180.0 / 360.0, 2.0);
  EXPECT_NEAR(prepared(1.0f, 0.0f, 3.0f).fHue, 65535.0 * 260.0 / 360.0, 2.0);
  EXPECT_GT(prepared(1.0f, 0.0f, 0.001f).fHue, 65500);
  const sPrepared mixed = prepared(2.0f, 0.5f, 1.0f);
  EXPECT_NEAR(mixed.fMax * mixed.fLuminance, 2.0f, 1e-5f);
  EXPECT_NEAR(mixed.fMin * mixed.fLuminance, 0.5f, 1e-5f);
}

TEST(Preparation, CountsPixelsWithoutLuminanceAsDarkGrey) {
  for (const float y : {0.0f, -0.0f, -3.0f, kNaN}) {
    const sPrepared dark = Prepare(1.0f, y, 1.0f);
    EXPECT_EQ(dark.fLuminance, 1e-6f);
    EXPECT_EQ(dark.fHue, 0);
    EXPECT_EQ(dark.fMin, 1.0f);
    EXPECT_EQ(dark.fMax, 1.0f);
  }
  EXPECT_EQ(Prepare(kNaN, 1.0f, 1.0f).fHue, 0);
  const sPrepared imaginary = Prepare(-5.0f, 1e-3f, -5.0f);
  EXPECT_LE(imaginary.fMin, 0.0f);
}

TEST(Preparation, MeasuresLogLuminanceAboveADenormalFloor) {
  EXPECT_EQ(Prepare(1.0f, 100.0f, 1.0f).fLogLuminance, 2.0f);
  EXPECT_EQ(Prepare(1.0f, 100.0f, 1.0f).fRange.fMax, 100.0f);
  for (const float y : {0.0f, -1.0f}) {
    const sPrepared dark = Prepare(1.0f, y, 1.0f);
    EXPECT_EQ(dark.fRange.fMin, 0x1p-128f);
    EXPECT_FLOAT_EQ(dark.fRange.fLogMin, -38.531839f);
    EXPECT_EQ(dark.fLogLuminance, dark.fRange.fLogMin);
  }
}

TEST(RowEncoder, ClampsWhateverAPixelHolds) {
  auto hues = std::make_unique<cHueTable>();
  std::vector<unsigned short> encoding(kTableSize);
  std::vector<float> curve(kTableSize);
  for (int i = 0; i < kTableSize; ++i) {
    encoding[static_cast<std::size_t>(i)] = static_cast<unsigned short>(i);
    curve[static_cast<std::size_t>(i)] = static_cast<float>(i) / 65535.0f;
  }
  const cMatrix33 identity(1, 0, 0, 0, 1, 0, 0, 0, 1);
  const float infinity = std::numeric_limits<float>::infinity();
  struct sCase {
    float fLuminance, fGain, fStretch, fBlack;
    unsigned short fExpected;
    float fMinRatio = 1.0f;
  };
  const sCase cases[] = {
      {0.5f, 1.0f, 1.0f, 0.4f, 32767}, {0.25f, 2.0f, 1.0f, 9.0f, 32767}, {0.5f, 7.0f, 2.0f, 0.25f, 32767},
      {0.2f, 7.0f, 2.0f, 0.25f, 0},    {9.0f, 7.0f, 2.0f, 0.25f, 65535}, {kNaN, 1.0f, 2.0f, 0.0f, 0},
      {kNaN, 1.0f, 1.0f, 0.0f, 0},     {infinity, 1.0f, 1.0f, 0.0f, 0},  {0.2f, 7.0f, 2.0f, 0.25f, 0, -1.0f}};
  for (const sCase& row : cases) {
    float luminance = row.fLuminance, min = row.fMinRatio, max = 1.0f;
    unsigned short hue = 0;
    const auto indices = std::make_unique<sColorIndices>();
    Kernels().fColorIndices({&min, &max, &hue, &luminance}, hues->Elements(),
                            {row.fGain, row.fStretch, row.fBlack}, indices->fR, indices->fG, indices->fB, 1);
    Kernels().fTransformIndices(identity.Elements(), curve.data(), indices->fR, indices->fG, indices->fB, 1);
    unsigned short wide[4] = {1, 1, 1, 0xA5A5};
    unsigned char narrow[4] = {1, 1, 1, 0xA5};
    EncodeRun(*indices, 0, encoding.data(), 16, {wide, false}, 0, 1);
    EncodeRun(*indices, 0, encoding.data(), 8, {narrow, true}, 0, 1);
    for (int k = 0; k < 3; ++k) {
      EXPECT_EQ(wide[k], row.fExpected) << row.fLuminance;
      EXPECT_EQ(narrow[k], wide[k] >> 8);
    }
    EXPECT_EQ(wide[3], 0xA5A5);
    EXPECT_EQ(narrow[3], 0xA5);
  }
}

}  // namespace
}  // namespace TmEngine
