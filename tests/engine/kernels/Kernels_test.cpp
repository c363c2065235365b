#include "engine/kernels/Kernels.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <vector>

#include "engine/math/Quantise.h"
#include "tests/Numbers.h"
#include "tests/Pictures.h"

// Every set of lanes writes the bytes that one lane writes, and nothing else.

namespace TmEngine {
namespace {

constexpr int kRoom = 160;
constexpr int kArrays = 4;

/// What a kernel may read and write: ordinary values among extremes, from an offset on.
struct sArrays {
  explicit sArrays(std::uint64_t pSeed) : fHues(kRoom), fInts(kArrays), fFloats(kArrays) {
    cRandom random(pSeed);
    const float extremes[] = {0.0f, -0.0f, kNaN, kInfinity, -kInfinity, 1e-42f, 3e38f, 1.0f, -1.0f};
    for (std::vector<float>& floats : fFloats) {
      for (int i = 0; i < kRoom; ++i)
        floats.push_back(random.Below(8) == 0 ? extremes[random.Below(9)] : 4.0f * random.Unit() - 1.0f);
    }
    for (std::vector<int>& ints : fInts) {
      for (int i = 0; i < kRoom; ++i) ints.push_back(random.Below(65536));
    }
    for (unsigned short& hue : fHues) hue = static_cast<unsigned short>(random.Next());
  }
  float* Floats(int pArray) { return fFloats[static_cast<std::size_t>(pArray)].data() + fOffset; }
  int* Ints(int pArray) { return fInts[static_cast<std::size_t>(pArray)].data() + fOffset; }
  sColorRun Colors() { return {Floats(0), Floats(1), fHues.data() + fOffset, Floats(2)}; }

  int fOffset = 0;
  std::vector<unsigned short> fHues;
  std::vector<std::vector<int>> fInts;
  std::vector<std::vector<float>> fFloats;
};

/// NaNs differ in sign from operation to operation; what reads them does not.
bool IsSame(float pA, float pB) {
  return std::memcmp(&pA, &pB, sizeof pA) == 0 || (pA != pA && pB != pB);
}

void ExpectSame(const sArrays& pA, const sArrays& pB) {
  EXPECT_EQ(pA.fInts, pB.fInts);
  EXPECT_EQ(pA.fHues, pB.fHues);
  for (std::size_t k = 0; k < kArrays; ++k) {
    for (std::size_t i = 0; i < kRoom; ++i)
      EXPECT_TRUE(IsSame(pA.fFloats[k][i], pB.fFloats[k][i])) << k << " " << i;
  }
}

const float* Table() {
  static const std::vector<float> table = [] {
    std::vector<float> values(3 * kTableSize);
    cRandom random(9);
    for (float& value : values) value = 1.2f * random.Unit() - 0.1f;
    return values;
  }();
  return table.data();
}

struct sCase {
  const char* fName;
  std::function<void(const sKernels&, sArrays&, int)> fRun;
};
std::ostream& operator<<(std::ostream& pStream, const sCase& pCase) {
  return pStream << pCase.fName;
}

class Kernels : public testing::TestWithParam<sCase> {};

TEST_P(Kernels, AreTheSameInEverySet) {
  const sKernels& one = *KernelsOf(1);
  for (const int lanes : {4, 8, 16}) {
    const sKernels* const set = KernelsOf(lanes);
    if (set == nullptr) continue;
    EXPECT_EQ(set->fLanes, lanes);
    for (int count = 0; count <= 3 * lanes + 1; ++count) {
      sArrays expected(static_cast<std::uint64_t>(count)), actual(static_cast<std::uint64_t>(count));
      expected.fOffset = actual.fOffset = 1 + count % 5;
      GetParam().fRun(one, expected, count);
      GetParam().fRun(*set, actual, count);
      SCOPED_TRACE(testing::Message() << lanes << " lanes, " << count);
      ExpectSame(expected, actual);
      ASSERT_FALSE(HasFailure());
    }
  }
}

constexpr float kMatrix[9] = {0.7f, 0.2f, -0.1f, -0.3f, 1.4f, 0.05f, 0.02f, -0.2f, 1.1f};

sGridRun GridRun() {
  static const std::vector<float> cells(Table(), Table() + 4096);
  return {cells.data() + 8, 2, 80, 160, 0.3f};
}

/// Cells within pLevels levels, below and above what a vector holds.
void Interpolate(const sKernels& pKernels, sArrays& pArrays, int pCount, int pLevels) {
  if (pCount == 0) return;
  for (int& cell : pArrays.fInts[0]) cell %= pLevels;
  std::vector<float> to(kRoom);
  pKernels.fInterpolate(GridRun(), pArrays.Ints(0), pArrays.Floats(0), pArrays.Floats(1), 0.1f, to.data(),
                        pCount);
  std::copy_n(to.data(), pCount, pArrays.Floats(2));
}

const int* Curve() {
  static const std::vector<int> curve = [] {
    std::vector<int> entries(kLuminanceSteps + 1);
    for (int i = 0; i <= kLuminanceSteps; ++i)
      entries[static_cast<std::size_t>(i)] = 119 * i << kRiseBits | (i % 250);
    return entries;
  }();
  return curve.data();
}

constexpr float kWeights[3] = {0.22f, 0.71f, 0.07f};
constexpr float kCones[9] = {0.41f, 0.54f, 0.05f, 0.21f, 0.68f, 0.11f, 0.09f, 0.28f, 0.63f};
constexpr float kFromCones[9] = {4.1f, -3.3f, 0.23f, -1.3f, 2.6f, -0.34f, 0.0f, -0.7f, 1.7f};

void ScaleColors(const sKernels& pKernels, sArrays& pArrays, int pCount, const float* pHues) {
  std::vector<float> red(kRoom), green(kRoom), blue(kRoom);
  const sColorRendering rendering = {pHues, Curve(), kMatrix, kWeights, kCones, kFromCones};
  const int outside = pKernels.fScaleColors(pArrays.Colors(), rendering, {2.0f, 0.7f, 0.1f}, red.data(),
                                            green.data(), blue.data(), pArrays.Ints(0), pCount);
  pArrays.Ints(1)[0] = outside;
  std::copy_n(red.data(), pCount, pArrays.Floats(0));
  std::copy_n(green.data(), pCount, pArrays.Floats(1));
  std::copy_n(blue.data(), pCount, pArrays.Floats(2));
}

INSTANTIATE_TEST_SUITE_P(
    All, Kernels,
    testing::Values(
        sCase{"Widen",
              [](const sKernels& k, sArrays& a, int n) {
                sRange range = {0.5f, 0.5f};
                k.fWiden(a.Floats(0), n, range);
                a.Floats(1)[0] = range.fMin;
                a.Floats(1)[1] = range.fMax;
              }},
        sCase{"Transform", [](const sKernels& k, sArrays& a,
                              int n) { k.fTransform(kMatrix, a.Floats(0), a.Floats(1), a.Floats(2), n); }},
        sCase{"Prepare",
              [](const sKernels& k, sArrays& a, int n) {
                const sArrays from = a;
                const float* const x = from.fFloats[1].data();
                k.fPrepare({x, x + 3, x + 5}, kMatrix, 0x1p-128f, a.Colors(), a.Floats(3), n);
              }},
        sCase{"NearestCells", [](const sKernels& k, sArrays& a,
                                 int n) { k.fNearestCells(a.Floats(0), -0.5f, 0.3f, 9, a.Ints(0), n); }},
        sCase{"Positions",
              [](const sKernels& k, sArrays& a, int n) {
                k.fPositions(a.Floats(0), -0.5f, 0.3f, 9, a.Ints(0), a.Floats(1), n);
              }},
        sCase{"InterpolateWithinAVector",
              [](const sKernels& k, sArrays& a, int n) { Interpolate(k, a, n, 7); }},
        sCase{"InterpolateOverMore", [](const sKernels& k, sArrays& a, int n) { Interpolate(k, a, n, 20); }},
        sCase{"Subtract", [](const sKernels& k, sArrays& a,
                             int n) { k.fSubtract(a.Floats(0), a.Floats(1), a.Floats(2), n); }},
        sCase{"Quantise", [](const sKernels& k, sArrays& a,
                             int n) { k.fQuantise(a.Floats(0), -1.0f, 3.7f, a.Ints(1), n); }},
        sCase{"Bins",
              [](const sKernels& k, sArrays& a, int n) { k.fBins(a.Floats(0), 0.1f, 3e4f, a.Ints(1), n); }},
        sCase{"ColorIndices",
              [](const sKernels& k, sArrays& a, int n) {
                k.fColorIndices(a.Colors(), Table(), {2.0f, 1.0f, 0.5f}, a.Ints(0), a.Ints(1), a.Ints(2), n);
              }},
        sCase{"ColorIndicesNeutral",
              [](const sKernels& k, sArrays& a, int n) {
                k.fColorIndices(a.Colors(), nullptr, {2.0f, 1.0f, 0.5f}, a.Ints(0), a.Ints(1), a.Ints(2), n);
              }},
        sCase{"ColorIndicesStretched",
              [](const sKernels& k, sArrays& a, int n) {
                k.fColorIndices(a.Colors(), Table(), {2.0f, 0.7f, 0.1f}, a.Ints(0), a.Ints(1), a.Ints(2), n);
              }},
        sCase{"TransformIndices",
              [](const sKernels& k, sArrays& a, int n) {
                k.fTransformIndices(kMatrix, Table(), a.Ints(0), a.Ints(1), a.Ints(2), n);
              }},
        sCase{"ScaleColors", [](const sKernels& k, sArrays& a, int n) { ScaleColors(k, a, n, nullptr); }},
        sCase{"ScaleColorsByATable",
              [](const sKernels& k, sArrays& a, int n) { ScaleColors(k, a, n, Table()); }},
        sCase{"SoftenColors",
              [](const sKernels& k, sArrays& a, int n) {
                const sColorRendering rendering = {nullptr, Curve(), kMatrix, kWeights, kCones, kFromCones};
                k.fSoftenColors(rendering, a.Floats(0), a.Floats(1), a.Floats(2), n);
              }},
        sCase{"RootIndices",
              [](const sKernels& k, sArrays& a, int n) { k.fRootIndices(a.Floats(0), a.Ints(0), n); }},
        sCase{"HueRecords",
              [](const sKernels& k, sArrays& a, int n) {
                const sArrays from = a;
                const float* const x = from.fFloats[1].data();
                k.fHueRecords(kMatrix, {x, x + 3, x + 5}, a.Colors(), n);
              }},
        sCase{"Equalise",
              [](const sKernels& k, sArrays& a, int n) {
                k.fEqualise({Table(), Table() + 7, kMatrix}, a.Colors(), a.Ints(0), a.Ints(1), a.Ints(2), n);
              }}),
    testing::PrintToStringParamName());

}  // namespace
}  // namespace TmEngine
