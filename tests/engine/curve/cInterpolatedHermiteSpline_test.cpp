#include "engine/curve/cInterpolatedHermiteSpline.h"

#include <cstdlib>
#include <new>
#include <vector>

#include "tests/ExceptionCheck.h"
#include "tests/Numbers.h"

// All arrays of the curves are allocated here: how many more may be; negative: any number.
static int gArraysLeft = -1;

void* operator new[](std::size_t pSize) {
  void* block = gArraysLeft == 0 ? nullptr : std::malloc(pSize);
  if (block == nullptr) throw std::bad_alloc();
  if (gArraysLeft > 0) --gArraysLeft;
  return block;
}
void operator delete[](void* pBlock) noexcept {
  std::free(pBlock);
}
void operator delete[](void* pBlock, std::size_t) noexcept {
  std::free(pBlock);
}

namespace TmEngine {
namespace {

constexpr auto kSupplied = eSplineInterpolationMode_Supplied;

// Key frames of pPoints points: record i has x = its position in the frame, its other floats are from i
// on.
std::vector<sControlPoint> Frames(int pPoints, int pCount) {
  std::vector<sControlPoint> records;
  for (int i = 0; i < pPoints * pCount; ++i) {
    const float v = static_cast<float>(i);
    records.push_back({{static_cast<float>(i % pPoints), v}, {v + 1, v + 2}, {v + 3, v + 4}, 7});
  }
  return records;
}

TEST(cInterpolatedHermiteSpline, BlendsNeighbouringFrames) {
  const struct {
    int fFrames;
    float fT, fPlace;
  } cases[] = {{3, 0.5f, 1},  {3, 0.25f, 0.5f}, {3, 1, 2},    {3, 7, 2},         {3, kInfinity, 2}, {3, 0, 0},
               {3, -0.1f, 0}, {3, kNaN, 0},     {1, 0.5f, 0}, {5, 0.625f, 2.5f}, {3, -kInfinity, 0}};
  for (const auto& test : cases) {
    cInterpolatedHermiteSpline spline;
    spline.SetKeyFrames(kSupplied, 2, test.fFrames, Frames(2, test.fFrames).data());
    spline.InterpolateKeyFrames(test.fT);
    const float v = 2 * test.fPlace + 1;  // of the second point
    const sControlPoint want[] = {{{0, v - 1}, {v, v + 1}, {v + 2, v + 3}, 0},
                                  {{1, v}, {v + 1, v + 2}, {v + 3, v + 4}, 0}};
    cHermiteSpline wanted;
    wanted.SetControlPoints(kSupplied, 2, want);
    EXPECT_TRUE(spline == wanted) << test.fFrames << ' ' << test.fT;
  }
}

TEST(cInterpolatedHermiteSpline, KeepsFramesUntilThePointCountChanges) {
  const cHermiteSpline diagonal;
  cInterpolatedHermiteSpline spline(diagonal);
  EXPECT_EQ(spline.GetKeyFrameCount(), 2);
  spline.MovePoint(1, {1, 0.25f});
  spline.InterpolateKeyFrames(0.5f);
  EXPECT_TRUE(spline == diagonal);  // the first frames are still there

  spline.SetKeyFrames(kSupplied, 3, 3, Frames(3, 3).data());  // a new count does not wipe what it comes with
  EXPECT_EQ(spline.GetPointAt(2).fY, 2.0f);
  spline.InterpolateKeyFrames(1.0f);
  EXPECT_EQ(spline.GetPointAt(2).fY, 8.0f);
  const cInterpolatedHermiteSpline copy(spline);
  EXPECT_TRUE(copy == spline);
  EXPECT_EQ(copy.GetKeyFrameCount(), 2);
  EXPECT_EQ(copy.GetKeyFrames()[5].fPoint.fY, 8.0f);

  spline.RemovePointAt(0);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(spline.GetKeyFrames()[i].fPoint.fY, i % 2 == 0 ? 7.0f : 8.0f);
  spline.SetKeyFrames(kSupplied, 2, 2, spline.GetKeyFrames() + 1);  // its own
  EXPECT_EQ(spline.GetKeyFrames()[0].fPoint.fY, 8.0f);
  EXPECT_EQ(spline.GetPointAt(0).fY, 7.0f);  // frame 0, sorted
}

TEST(cInterpolatedHermiteSpline, TakesFloatsInTheirOrder) {
  const float floats[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
  const sControlPoint records[] = {{{0, 1}, {4, 5}, {2, 3}, 0}, {{6, 7}, {10, 11}, {8, 9}, 0}};
  cInterpolatedHermiteSpline got, want;
  got.SetKeyFrames(kSupplied, 2, 1, floats);
  want.SetKeyFrames(kSupplied, 2, 1, records);
  EXPECT_TRUE(got == want);
}

template <class tRecord>
void CheckRefusals(const std::string& pRecord, const std::string& pWords) {
  const auto set = [](int pPoints, int pFrames) {
    cInterpolatedHermiteSpline().SetKeyFrames(kSupplied, pPoints, pFrames,
                                              static_cast<const tRecord*>(nullptr));
  };
  ExpectThrow<cArgumentException>([&] { set(1, 0); },
                                  "Argument pControlPointCount must be " + pWords + " two.",
                                  ".\\cHermiteSpline.cpp");  // the base's
  ExpectChecks(
      "void __cdecl TmEngine::cInterpolatedHermiteSpline::SetKeyFrames(enum "
      "TmEngine::eSplineInterpolationMode,int,int,const " +
          pRecord + " *)",
      {TM_ARG("Argument pKeyFrameCount must be " + pWords + " one.", set(2, 0)),
       TM_NULL("Argument pCPs cannot be null.", set(2, 1))});
}

TEST(cInterpolatedHermiteSpline, RefusesBadArgumentsInOrder) {
  CheckRefusals<sControlPoint>("struct TmEngine::sControlPoint", "greater than or equal to");
  CheckRefusals<float>("float", "greater or equal than");
}

// Lets the first, second, ... array of each call fail until the call succeeds.
TEST(cInterpolatedHermiteSpline, StandsAsItWasWhenMemoryRunsOut) {
  using tSpline = cInterpolatedHermiteSpline;
  static const auto frames = Frames(3, 4);
  void (*const calls[])(tSpline&) = {[](tSpline& s) { s.SetControlPoints(kSupplied, 4, frames.data()); },
                                     [](tSpline& s) { s.SetKeyFrames(kSupplied, 2, 3, frames.data()); },
                                     [](tSpline& s) { s.RemovePointAt(2); },
                                     [](tSpline& s) { const tSpline copy(s), fresh; }};
  for (const auto& call : calls) {
    for (int arrays = 0, isDone = 0; isDone == 0; ++arrays) {
      tSpline spline;
      spline.SetKeyFrames(kSupplied, 3, 2, frames.data());
      const cHermiteSpline before(spline);
      gArraysLeft = arrays;
      try {
        call(spline);
        isDone = 1;
        EXPECT_GE(arrays, 2);
      } catch (const std::bad_alloc&) {
        EXPECT_TRUE(spline == before);
        spline.InterpolateKeyFrames(1.0f);
        EXPECT_EQ(spline.GetPointAt(2).fY, 5.0f);
      }
      gArraysLeft = -1;
    }
  }
}

}  // namespace
}  // namespace TmEngine
