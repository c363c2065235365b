#include "engine/stages/ColorRendering.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "engine/cTmRenderer.h"
#include "engine/color/cTransfer.h"
#include "engine/curve/cHermiteSpline.h"
#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapBGR8.h"
#include "engine/image/cBitmapXYZ32.h"
#include "tests/Pictures.h"

namespace TmEngine {
namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;
constexpr double kDegrees = 180.0 / 3.14159265358979;
using tColor = std::array<double, 3>;

tColor Multiply(const double (&pM)[9], const tColor& pV) {
  tColor product;
  for (std::size_t i = 0; i < 3; ++i)
    product[i] = pM[3 * i] * pV[0] + pM[3 * i + 1] * pV[1] + pM[3 * i + 2] * pV[2];
  return product;
}

/// Lightness, chroma and hue in degrees, by the formulas of the paper, of linear sRGB.
tColor Oklab(const tColor& pColor) {
  constexpr double kCones[9] = {0.4122214708, 0.5363325363, 0.0514459929, 0.2119034982, 0.6806995451,
                                0.1073969566, 0.0883024619, 0.2817188376, 0.6299787005};
  constexpr double kLab[9] = {0.2104542553, 0.7936177850, -0.0040720468, 1.9779984951, -2.4285922050,
                              0.4505937099, 0.0259040371, 0.7827717662,  -0.8086757660};
  tColor cones = Multiply(kCones, pColor);
  for (double& cone : cones) cone = std::cbrt(cone);
  const tColor lab = Multiply(kLab, cones);
  return {lab[0], std::hypot(lab[1], lab[2]), std::atan2(lab[2], lab[1]) * kDegrees};
}

double HueDifference(const tColor& pA, const tColor& pB) {
  return std::abs(std::remainder(pA[2] - pB[2], 360.0));
}

/// Colours of every hue and purity that sRGB has, in light over four decades.
struct sScene {
  sScene() : fInput(kWidth, kHeight), fColors(kWidth * kHeight) {
    cRandom random(5);
    const cMatrix33 toXYZ = cColorSpace_sRGB().GetRGBToXYZ();
    for (std::size_t i = 0; i < fColors.size(); ++i) {
      const float level = std::pow(10.0f, 4.0f * random.Unit() - 2.0f);
      const bool isGrey = i % 16 == 0;
      const float red = random.Unit(), green = random.Unit(), blue = random.Unit();
      const cVector3 rgb = isGrey ? cVector3{level, level, level}
                                  : cVector3{level * red * red, level * green * green, level * blue * blue};
      const cVector3 xyz = toXYZ * rgb;
      fColors[i] = {static_cast<double>(rgb[0]), static_cast<double>(rgb[1]), static_cast<double>(rgb[2])};
      float* const to = fInput.GetBitmapData() + 3 * i;
      to[0] = xyz[0];
      to[1] = xyz[1];
      to[2] = xyz[2];
    }
  }
  cBitmapXYZ32 fInput;
  std::vector<tColor> fColors;
};

/// As linear light of the output's space, 0 to 1.
std::vector<tColor> Render(sScene& pScene, cBitmapLDR& pOutput, eRendering pRendering) {
  const auto renderer = std::make_unique<cTmRenderer>();
  renderer->SetVerbose(false);
  renderer->SetInput(&pScene.fInput);
  renderer->SetOutput(&pOutput);
  renderer->SetRendering(pRendering);
  renderer->SetToneParameters(67.0f, 0.0f, true, 20.0f, true, 0.0f, 100.0f, 60.0f, 0.0f, false, false, false,
                              0.25f, 0.1f);
  renderer->Render();
  const std::unique_ptr<cColorSpace> space(pOutput.GetColorSpace()->Clone());
  std::vector<tColor> colors;
  for (std::size_t i = 0; i < std::size_t{kWidth} * kHeight; ++i) {
    tColor color;
    for (std::size_t k = 0; k < 3; ++k) {
      const std::size_t at = 3 * i + 2 - k;
      const float code =
          pOutput.GetBitDepth() == 16
              ? static_cast<float>(static_cast<cBitmapBGR16&>(pOutput).GetBGR16Data()[at]) / 65535.0f
              : static_cast<float>(pOutput.GetBitmapData()[at]) / 255.0f;
      color[k] = static_cast<double>(space->GetToLinear()->Evaluate(code));
    }
    colors.push_back(color);
  }
  return colors;
}

bool IsClipped(const tColor& pColor) {
  const auto [low, high] = std::minmax_element(pColor.begin(), pColor.end());
  return *low < 8e-4 || *high > 0.985;
}

TEST(ColorRendering, KeepsHueAndPurityWhereTheyFit) {
  sScene scene;
  cBitmapBGR16 output(kWidth, kHeight, eColorSpaceID_sRGB);
  const std::vector<tColor> colors = Render(scene, output, eRendering_Colors);
  int kept = 0;
  for (std::size_t i = 0; i < colors.size(); ++i) {
    if (IsClipped(colors[i])) continue;
    const tColor before = Oklab(scene.fColors[i]), after = Oklab(colors[i]);
    if (before[1] < 0.06 * before[0]) {
      EXPECT_LT(after[1], 0.07 * after[0]);
      continue;
    }
    EXPECT_LT(HueDifference(before, after), 0.5) << i;
    const double purity = after[1] / after[0] / (before[1] / before[0]);
    EXPECT_LT(purity, 1.01);
    kept += purity > 0.99 ? 1 : 0;
  }
  EXPECT_GT(kept, kWidth * kHeight / 2);  // the others are near the gamut's ends
  const std::vector<tColor> channels = Render(scene, output, eRendering_Channels);
  EXPECT_NE(channels, colors);
}

// ... and lightness before purity: what does not fit goes to white softly, and keeps its hue.
TEST(ColorRendering, BringsEveryColourIntoTheGamut) {
  sScene scene;
  cBitmapBGR16 output(kWidth, kHeight, eColorSpaceID_sRGB);
  const std::vector<tColor> colors = Render(scene, output, eRendering_Colors);
  double sum = 0.0;
  int clipped = 0, white = 0;
  for (std::size_t i = 0; i < colors.size(); ++i) {
    white += *std::min_element(colors[i].begin(), colors[i].end()) >= 1.0 ? 1 : 0;
    const tColor before = Oklab(scene.fColors[i]), after = Oklab(colors[i]);
    if (!IsClipped(colors[i]) || after[1] < 0.02 || before[1] < 0.06 * before[0]) continue;
    sum += HueDifference(before, after);
    ++clipped;
  }
  EXPECT_GT(clipped, 20);
  EXPECT_LT(sum / clipped, 1.0);
  EXPECT_GT(white, 0);
  EXPECT_LT(white, kWidth * kHeight / 50);
}

TEST(ColorRendering, KeepsGreysGreyInEverySpaceAndDepth) {
  sScene scene;
  for (int space = 0; space < 3; ++space) {
    const auto id = static_cast<eColorSpaceID>(space);
    cBitmapBGR8 bytes(kWidth, kHeight, id);
    cBitmapBGR16 codes(kWidth, kHeight, id);
    Render(scene, bytes, eRendering_Colors);
    Render(scene, codes, eRendering_Colors);
    for (int i = 0; i < 3 * kWidth * kHeight; i += 3 * 16) {
      const unsigned char* const byte = bytes.GetBitmapData() + i;
      const unsigned short* const code = codes.GetBGR16Data() + i;
      EXPECT_LE(std::max({byte[0], byte[1], byte[2]}) - std::min({byte[0], byte[1], byte[2]}), 1);
      EXPECT_LE(std::max({code[0], code[1], code[2]}) - std::min({code[0], code[1], code[2]}), 12);
      EXPECT_NEAR(byte[1], code[1] / 257.0, 0.56);  // rounded, not cut off
    }
  }
}

}  // namespace
}  // namespace TmEngine
