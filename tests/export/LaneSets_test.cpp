#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "engine/kernels/Kernels.h"
#include "tests/StderrCapture.h"
#include "tests/export/HostCall.h"

// Whole calls give the same bytes and lines with every set of lanes. In this program the engine works with
// the set that a test names: the choice below replaces its own.

namespace {

const TmEngine::sKernels* gSet = nullptr;
int gAsked = 0;

}  // namespace

const TmEngine::sKernels& TmEngine::Kernels() {
  ++gAsked;
  return *gSet;
}

namespace {

struct sResult {
  std::vector<unsigned char> fPixels;
  std::string fLog;
  bool operator==(const sResult&) const = default;
};

const tm_quorvane_settings kSliders[] = {{0, 0, 0, 0, 0, 0, {}, 0, {}, 0},
                                         {160, 8, 20, 40, 1, 9, {}, 0, {}, 0},
                                         {-230, -10, 3, 10, 0.5f, -10, {}, 0, {}, 1},
                                         {60, -3, 7, 2, 0.1f, 4, {}, 0, {}, 1}};
constexpr std::pair<int, int> kShapes[] = {{1, 1},   {7, 5},    {1, 700}, {700, 1},
                                           {33, 17}, {203, 91}, {1041, 5}};

sResult Call(const TmEngine::sKernels& pSet, const tm_quorvane_image& pImage,
             const tm_quorvane_settings& pSliders, int pColorSpace) {
  gSet = &pSet;
  gAsked = 0;
  sCall call(pImage);
  call.fSettings = pSliders;
  cStderrCapture capture;
  EXPECT_EQ(call.Run(pColorSpace), 1);
  EXPECT_GT(gAsked, 10) << "the engine has not asked for its set";
  return {call.fOutput, capture.Text()};
}

/// Each shape and depth, with one combination of sliders and colour space after the other.
template <class tDo>
void ForEachCall(const tDo& pDo) {
  std::size_t sliders = 0;
  for (const auto& [width, height] : kShapes) {
    for (const int inputBits : {8, 16, 32}) {
      for (const int outputBits : {8, 16}) {
        for (int i = 0; i < 2; ++i, ++sliders) {
          pDo(HostImage(width, height, inputBits, outputBits), kSliders[sliders % 4],
              static_cast<int>(sliders / 4 % 3));
        }
      }
    }
  }
}

class LaneSets : public testing::TestWithParam<int> {};

TEST_P(LaneSets, GiveTheBytesOfOneLane) {
  const TmEngine::sKernels* const set = TmEngine::KernelsOf(GetParam());
  if (set == nullptr) GTEST_SKIP() << "this processor has no set of " << GetParam() << " lanes: NOT compared";
  ASSERT_EQ(set->fLanes, GetParam());
  int calls = 0;
  ForEachCall([&](const tm_quorvane_image& pImage, const tm_quorvane_settings& pSliders, int pColorSpace) {
    EXPECT_EQ(Call(*set, pImage, pSliders, pColorSpace),
              Call(*TmEngine::KernelsOf(1), pImage, pSliders, pColorSpace))
        << pImage.width << " x " << pImage.height << ", " << pImage.input_bits << " -> "
        << pImage.output_bits;
    ++calls;
  });
  EXPECT_GE(calls, 84);
}

#if defined(__x86_64__)
INSTANTIATE_TEST_SUITE_P(Lanes, LaneSets, testing::Values(4, 8, 16));
#else
INSTANTIATE_TEST_SUITE_P(Lanes, LaneSets, testing::Values(4));
#endif

/// The widest and the narrowest set are always there; what is missing in between is said.
TEST(LaneSetsOfThisMachine, AreCounted) {
  std::ostringstream compared;
  for (const int lanes : {1, 4, 8, 16}) {
    if (TmEngine::KernelsOf(lanes) != nullptr) compared << lanes << ' ';
  }
  std::printf("sets of lanes on this machine: %s\n", compared.str().c_str());
  RecordProperty("sets", compared.str());
  EXPECT_EQ(TmEngine::KernelsOf(1)->fLanes, 1);
  EXPECT_NE(TmEngine::KernelsOf(4), nullptr);
}

}  // namespace
