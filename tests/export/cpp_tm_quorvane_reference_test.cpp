// The exported function against the plain second writing in reference/: every byte of the output buffer, the
// lines on standard error, the result and the changed settings.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "examples/scene/HostPixels.h"
#include "export/quorvane.h"
#include "tests/Numbers.h"
#include "tests/Pictures.h"
#include "tests/StderrCapture.h"
#include "tests/reference/ReferenceToneMapper.h"

namespace {

/// The tests' numbers, and what the cases draw from them.
struct sRandom : cRandom {
  using cRandom::cRandom;
  bool OneIn(int pCount) { return Below(pCount) == 0; }
  float Between(float pLow, float pHigh) { return pLow + (pHigh - pLow) * Unit(); }
};

enum class ePicture { kRandom, kGradient, kBlackSpots, kFlat, kBrightPixel, kDeep, kCount, kScene };

struct sCase {
  tm_quorvane_image fImage{};
  tm_quorvane_settings fSettings{};
  int fColorSpace = 0;
  ePicture fPicture = ePicture::kRandom;
  std::uint64_t fSeed = 0;
};

/// What distinguishes a case: all else follows from the seed.
std::string Describe(const sCase& pCase) {
  const tm_quorvane_image& image = pCase.fImage;
  std::ostringstream text;
  text << "seed " << pCase.fSeed << ": " << image.width << " x " << image.height << ", "
       << image.samples_per_pixel << " samples, " << image.input_bits << " -> " << image.output_bits
       << " bits, pitch " << image.output_row_pitch << ", space " << pCase.fColorSpace;
  return text.str();
}

// ---- Pictures ----

/// A sample's brightness in [0, 1].
float Level(const sCase& pCase, int x, int y, int pChannel, sRandom& pRandom) {
  const tm_quorvane_image& image = pCase.fImage;
  const auto along = static_cast<float>(x + 1) / static_cast<float>(image.width + 1);
  const auto down = static_cast<float>(y + 1) / static_cast<float>(image.height + 1);
  const float random = pRandom.Between(0.0f, 1.0f);
  const bool coded = image.input_bits == 8 || image.input_bits == 16;  // all else is filled as RGBE
  const int channels = coded ? image.samples_per_pixel : 3;
  const ePicture picture = pCase.fPicture;
  if (picture == ePicture::kGradient) return along * (0.3f + 0.7f * down) * (pChannel == 0 ? 1.0f : 0.8f);
  if (picture == ePicture::kBlackSpots) return (x * 7 + y * 3) % 5 == 0 ? 0.0f : random;
  if (picture == ePicture::kFlat && pCase.fSeed % 3 == 0) return 0.0f;
  if (picture == ePicture::kFlat)
    return 0.4f + 0.5f * static_cast<float>(pChannel) / static_cast<float>(channels);
  if (picture == ePicture::kBrightPixel) return x == image.width / 2 && y == image.height / 2 ? 1.0f : 0.05f;
  return random;
}

template <class tSample>
void FillCoded(const sCase& pCase, float pMax, sRandom& pRandom, std::vector<std::uint8_t>& pBytes) {
  const tm_quorvane_image& image = pCase.fImage;
  for (int y = 0; y < image.height; ++y) {
    for (int x = 0; x < image.width; ++x) {
      for (int channel = 0; channel < image.samples_per_pixel; ++channel) {
        const auto sample = static_cast<tSample>(Level(pCase, x, y, channel, pRandom) * pMax);
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(&sample);
        pBytes.insert(pBytes.end(), bytes, bytes + sizeof(tSample));
      }
    }
  }
}

void FillRgbe(const sCase& pCase, sRandom& pRandom, std::vector<std::uint8_t>& pBytes) {
  const tm_quorvane_image& image = pCase.fImage;
  for (int y = 0; y < image.height; ++y) {
    for (int channel = 0; channel < 3; ++channel) {
      for (int x = 0; x < image.width; ++x) {
        pBytes.push_back(static_cast<std::uint8_t>(Level(pCase, x, y, channel, pRandom) * 255.0f));
      }
    }
    for (int x = 0; x < image.width; ++x) {
      int exponent = 130;
      if (pCase.fPicture == ePicture::kRandom) exponent = 122 + pRandom.Below(14);
      if (pCase.fPicture == ePicture::kGradient) exponent = 126 + 8 * x / image.width;
      if (pCase.fPicture == ePicture::kBlackSpots) exponent = pRandom.OneIn(4) ? 0 : 128;
      if (pCase.fPicture == ePicture::kDeep) exponent = pRandom.Below(256);
      pBytes.push_back(static_cast<std::uint8_t>(exponent));
    }
  }
}

std::vector<std::uint8_t> MakeInput(const sCase& pCase) {
  const tm_quorvane_image& image = pCase.fImage;
  if (pCase.fPicture == ePicture::kScene) {
    return Scene::HostPixels(Scene::RenderScene({.fWidth = 180, .fHeight = 120}), image.width, image.height,
                             image.input_bits);
  }
  sRandom random(pCase.fSeed + 1000000);
  std::vector<std::uint8_t> bytes;
  bytes.reserve(1);  // never null, even without a sample
  const int bits = pCase.fImage.input_bits;
  if (bits == 8) FillCoded<std::uint8_t>(pCase, 255.0f, random, bytes);
  if (bits == 16) FillCoded<std::uint16_t>(pCase, 65535.0f, random, bytes);
  if (bits != 8 && bits != 16) FillRgbe(pCase, random, bytes);
  return bytes;
}

// ---- One call on each side ----

struct sOutcome {
  int fResult = 0;
  std::string fException, fLog;
  tm_quorvane_settings fSettings{};
  std::vector<std::uint8_t> fOutput;
};

constexpr std::uint8_t kSentinel = 0xA5;

/// The host's buffer as small as it may be, and some bytes behind it that nobody may touch.
std::vector<std::uint8_t> MakeOutput(const tm_quorvane_image& pImage) {
  const std::int64_t samples = std::int64_t{pImage.height - 1} * pImage.output_row_pitch +
                               std::int64_t{pImage.width} * pImage.samples_per_pixel;
  const std::int64_t bytes = std::max(samples, std::int64_t{0}) * (pImage.output_bits / 8) + 16;
  return std::vector<std::uint8_t>(static_cast<std::size_t>(bytes), kSentinel);
}

/// pCall: either side, as a function of the settings, the output and where the reference writes its lines.
template <class tCall>
sOutcome Call(const sCase& pCase, const tCall& pCall) {
  sOutcome outcome;
  outcome.fSettings = pCase.fSettings;
  outcome.fOutput = MakeOutput(pCase.fImage);
  cStderrCapture capture;
  try {
    outcome.fResult = pCall(&outcome.fSettings, outcome.fOutput.data(), &outcome.fLog);
  } catch (const std::runtime_error& exception) {
    outcome.fException = exception.what();
  }
  outcome.fLog += capture.Text();
  return outcome;
}

std::string FirstDifference(const sOutcome& pLibrary, const sOutcome& pReference) {
  const std::vector<std::uint8_t>&library = pLibrary.fOutput, &reference = pReference.fOutput;
  const auto at = std::mismatch(library.begin(), library.end(), reference.begin());
  if (at.first == library.end()) return "none";
  return "byte " + std::to_string(at.first - library.begin()) + ": library " + std::to_string(*at.first) +
         ", reference " + std::to_string(*at.second);
}

void ExpectSame(const sCase& pCase) {
  const std::vector<std::uint8_t> input = MakeInput(pCase);
  const sOutcome reference = Call(pCase, [&](tm_quorvane_settings* pSettings, void* pOut, std::string* pLog) {
    return Reference::ToneMap(pCase.fImage, pCase.fColorSpace, *pSettings, input.data(), pOut, pLog);
  });
  const sOutcome library = Call(pCase, [&](tm_quorvane_settings* pSettings, void* pOut, std::string*) {
    return cpp_tm_quorvane(&pCase.fImage, nullptr, pCase.fColorSpace, pSettings, input.data(), pOut);
  });
  SCOPED_TRACE(Describe(pCase));
  EXPECT_EQ(library.fResult, reference.fResult);
  EXPECT_EQ(library.fException, reference.fException);
  EXPECT_EQ(library.fLog, reference.fLog);
  EXPECT_EQ(std::memcmp(&library.fSettings, &reference.fSettings, sizeof(tm_quorvane_settings)), 0);
  EXPECT_EQ(FirstDifference(library, reference), "none");
}

// ---- Cases ----

void RandomSettings(sCase& pCase, sRandom& pRandom) {
  tm_quorvane_settings& settings = pCase.fSettings;
  settings.strength = pRandom.OneIn(3) ? 0.0f : pRandom.Between(-240.0f, 170.0f);
  settings.lighting = pRandom.OneIn(3) ? 0.0f : pRandom.Between(-14.0f, 10.0f);
  settings.tone_compression = pRandom.OneIn(2) ? 0.0f : pRandom.Between(0.0f, 50.0f);
  settings.white_clip = pRandom.OneIn(3) ? 0.0f : pRandom.Between(0.0f, 100.0f);
  settings.black_clip = pRandom.OneIn(3) ? 0.0f : pRandom.Between(0.0f, 5.0f);
  settings.microcontrast = pRandom.OneIn(3) ? 0.0f : pRandom.Between(-11.0f, 10.0f);
  settings.test1 = pRandom.OneIn(2) ? 1.0f : 0.999f;
  settings.horizontal_wrap = pRandom.OneIn(2) ? 1.0f : 0.0f;
  if (pCase.fSeed % 8 == 0) {  // points that cross are not stretched: the exposure scale counts
    settings.white_clip = 2000.0f;
    settings.black_clip = 100.0f;
  }
  if (!pRandom.OneIn(16)) return;
  constexpr float kFar[] = {-900.0f, -130.0f, 40.0f, 900.0f, 1e30f, -1e30f, kInfinity, -kInfinity, kNaN};
  const float value = kFar[pRandom.Below(9)];
  // One slider at a time: two would ask for a giant grid.
  float* const sliders[] = {&settings.strength,   &settings.lighting,   &settings.tone_compression,
                            &settings.white_clip, &settings.black_clip, &settings.microcontrast};
  const int which = pRandom.Below(6);
  *sliders[which] = value;
  if (which == 5) pCase.fImage.height = 1;
}

constexpr int kWidths = 17;
constexpr int kDepths[6][2] = {{8, 8}, {8, 16}, {16, 8}, {16, 16}, {32, 8}, {32, 16}};
constexpr int kSystematic = kWidths * 2 * 6;
constexpr int kCases = 1200;
constexpr int kShards = 12;

/// The first cases go through each width, order and depths once; all else is drawn from the seed.
sCase MakeCase(int pSeed) {
  sRandom random(static_cast<std::uint64_t>(pSeed));
  sCase result;
  result.fSeed = static_cast<std::uint64_t>(pSeed);
  const int choice = pSeed < kSystematic ? pSeed : random.Below(kSystematic);
  const int* depths = kDepths[choice / (2 * kWidths)];
  tm_quorvane_image& image = result.fImage;
  image.width = choice % kWidths + 1;
  image.height = random.Below(9) + 1;
  image.samples_per_pixel = random.OneIn(4) ? 4 : random.OneIn(8) ? 1 + random.Below(2) : 3;
  image.input_bits = depths[0];
  image.output_bits = depths[1];
  image.reversed_order = choice / kWidths % 2;
  image.output_row_pitch =
      image.samples_per_pixel * image.width + (random.OneIn(3) ? 0 : 1 + random.Below(9));
  result.fColorSpace = random.Below(3);
  result.fPicture = static_cast<ePicture>(random.Below(static_cast<int>(ePicture::kCount)));
  RandomSettings(result, random);
  return result;
}

class SmallPictures : public testing::TestWithParam<int> {};

TEST_P(SmallPictures, AgreeToTheBit) {
  for (int seed = GetParam(); seed < kCases; seed += kShards) ExpectSame(MakeCase(seed));
}

INSTANTIATE_TEST_SUITE_P(Shards, SmallPictures, testing::Range(0, kShards));

TEST(LargePictures, AgreeToTheBit) {
  for (const int seed : {1, 2, 3, 8, 9, 10, 11}) {
    sCase large = MakeCase(seed);
    large.fImage = {300, 200, 3, seed == 2 ? 16 : 32, seed == 1 ? 8 : 16, 0, 907, seed == 3, {}};
    large.fPicture = seed == 2 ? ePicture::kBlackSpots : ePicture::kGradient;
    if (seed == 8) {  // a hundredth of the pixels is a whole one
      large.fImage.width = 20;
      large.fImage.height = 5;
      large.fPicture = ePicture::kRandom;
    }
    if (seed == 3 || seed == 11) {  // a row of more than one run
      large.fImage.width = 2100;
      large.fImage.height = 28;
      large.fImage.output_row_pitch = 3 * 2100 + 7;
    }
    if (seed >= 9) {
      large.fImage.input_bits = seed == 9 ? 8 : seed == 10 ? 16 : 32;
      large.fPicture = ePicture::kScene;
    }
    large.fSettings.microcontrast = static_cast<float>(seed) - 2.0f;
    large.fSettings.horizontal_wrap = seed == 2 ? 0.0f : 1.0f;
    ExpectSame(large);
  }
}

/// Margins of up to three widths, over rows of one pixel to several runs; cells up to all of the picture, or,
/// where 25 x 1000 have microcontrast 0, exactly as wide.
TEST(WrappedShapes, AgreeToTheBit) {
  const int sizes[][2] = {{1, 900},  {2, 501}, {5, 700},  {25, 1000},
                          {40, 600}, {64, 64}, {300, 40}, {2100, 3}};
  for (const auto& [width, height] : sizes) {
    for (const float microcontrast : {0.0f, -9.0f, -40.0f, -130.0f, -1e30f}) {
      sCase wrapped = MakeCase(width);
      wrapped.fImage = {width, height, 3, 16, 16, 0, 3 * width, 0, {}};
      wrapped.fPicture = width % 2 == 0 ? ePicture::kGradient : ePicture::kRandom;
      wrapped.fSettings.microcontrast = microcontrast;
      wrapped.fSettings.horizontal_wrap = 1.0f;
      ExpectSame(wrapped);
    }
  }
}

TEST(WaysOut, AgreeInResultTextAndLines) {
  const struct {
    int fInputBits, fOutputBits, fColorSpace, fSamples;
    float fLighting, fMicrocontrast;
  } rows[] = {{8, 8, 3, 3, 0.0f, 0.0f},       {8, 8, -1, 3, 0.0f, 0.0f}, {8, 8, INT_MAX, 3, 0.0f, 0.0f},
              {8, 8, INT_MIN, 3, 0.0f, 0.0f}, {12, 8, 0, 3, 0.0f, 0.0f}, {24, 8, 0, 3, 0.0f, 0.0f},
              {24, 8, 3, 0, kNaN, kNaN},      {-8, 8, 0, 3, 0.0f, 0.0f}, {64, 8, 0, 3, 0.0f, 0.0f},
              {0, 16, 1, 0, 0.0f, 0.0f},      {8, 12, 0, 3, kNaN, 0.0f}, {8, 8, 0, 0, kNaN, kNaN},
              {16, 8, 0, 3, kNaN, kNaN},      {32, 8, 0, 3, kNaN, 0.0f}};
  for (const auto& row : rows) {
    sCase failing = MakeCase(5);
    failing.fImage.input_bits = row.fInputBits;
    failing.fImage.output_bits = row.fOutputBits;
    failing.fImage.samples_per_pixel = row.fSamples;
    failing.fImage.output_row_pitch = 3 * failing.fImage.width;
    failing.fColorSpace = row.fColorSpace;
    failing.fSettings.lighting = row.fLighting;
    failing.fSettings.microcontrast = row.fMicrocontrast;
    failing.fSettings.black_clip = 1e38f;  // has more digits than any other
    ExpectSame(failing);
  }
}

/// With the engine's own order, a pitch below the packed row cuts each row. All else that is too short is
/// refused, and nothing is written.
TEST(ShortPitches, AgreeToTheBit) {
  constexpr int kPitches[] = {INT_MIN, -20, -1, 0, 1, 9, 14, 15, 19};
  for (const int bits : {8, 12, 16}) {
    for (const int samples : {1, 3, 4}) {
      for (const int order : {0, 1, -1}) {
        for (const int pitch : kPitches) {
          sCase cut;
          cut.fImage = {5, 3, samples, 32, bits, 0, pitch, order, {}};
          ExpectSame(cut);
        }
      }
    }
  }
}

/// What follows from the formulas by hand, so that both sides cannot be wrong alike.
TEST(Reference, KeepsKnownFigures) {
  const std::vector<float> ramp = {0.2f, 0.2f, 0.2f, 0.4f, 0.5f, 0.3f, 2.0f, 2.0f, 1.0f, 0.1f, 0.1f, 0.2f};
  const double dark = std::pow(2.0, -0.35);
  const struct {
    float fStrength;
    double fExposureScale;
  } rows[] = {{100.0f, std::pow(0.5, 2.2) * dark}, {0.0f, 1.0}, {50.0f, dark / std::sqrt(2.0)}};
  for (const auto& row : rows) {
    Reference::sEngineValues values;
    values.fStrength = row.fStrength;
    const Reference::sPicture picture = Reference::ToneMapXYZ(4, 1, ramp, values, 16, 0, nullptr);
    EXPECT_NEAR(picture.fStatistics.fExposureScale, row.fExposureScale, 1e-6) << row.fStrength;
    EXPECT_EQ(picture.fBGR.size(), 12u);
    EXPECT_EQ(picture.fStatistics.fMaxY, 2.0f);
  }
}

}  // namespace
