#include "engine/curve/cHermiteSpline.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <tuple>
#include <vector>

#include "tests/ExceptionCheck.h"
#include "tests/Numbers.h"

namespace TmEngine {
namespace {

using tPoints = std::vector<sControlPoint>;

tPoints Points(std::initializer_list<cVector2> pPoints) {
  tPoints points;
  for (const cVector2& point : pPoints) points.push_back({point, {7, 8}, {9, 10}, 99});
  return points;
}

cHermiteSpline& Set(cHermiteSpline& pSpline, int pMode, const tPoints& pPoints) {
  const auto mode = static_cast<eSplineInterpolationMode>(pMode);
  pSpline.SetControlPoints(mode, static_cast<int>(pPoints.size()), pPoints.data());
  return pSpline;
}

float Curve(bool pStraight, float p0, float p1, float t0, float t1, float s) {
  if (pStraight) return (p1 - p0) * s + p0;
  const float a = 2.0f * p0 - 2.0f * p1 + t0 + t1;
  const float b = 3.0f * p1 - 3.0f * p0 - 2.0f * t0 - t1;
  return ((a * s + b) * s + t0) * s + p0;
}

int Sample(float x) {
  return x < 0 ? 0 : x > 1 ? 65535 : static_cast<int>(x * 65535.0f);
}

// The float table, each entry by itself: tail, head, or else the line drawn last over it. Numbers only.
std::vector<float> SlowTable(bool pStraight, const tPoints& p) {
  std::vector<std::pair<cVector2, cVector2>> lines;
  for (std::size_t i = 1; i < p.size(); ++i) {
    const cVector2 p0 = p[i - 1].fPoint, p1 = p[i].fPoint;
    const cVector2 t0 = p[i - 1].fNextTangent, t1 = p[i].fPreviousTangent;
    cVector2 from = p0;
    for (int j = 1; j <= 100; ++j) {
      const float s = static_cast<float>(j) / 100.0f, x = Curve(pStraight, p0.fX, p1.fX, t0.fX, t1.fX, s);
      const cVector2 to = j == 100 ? p1 : cVector2(x, Curve(pStraight, p0.fY, p1.fY, t0.fY, t1.fY, s));
      if (Sample(to.fX) <= Sample(from.fX)) continue;
      lines.push_back({from, to});
      from = to;
    }
  }
  const double head = std::trunc(p[0].fPoint.fX * 65535.0f), tail = std::trunc(p.back().fPoint.fX * 65535.0f);
  const auto entry = [&](int k) {
    if (k >= tail && tail <= 65535) return p.back().fPoint.fY;
    if (k <= head) return p[0].fPoint.fY;
    for (auto line = lines.rbegin();; ++line) {
      const int first = Sample(line->first.fX), last = Sample(line->second.fX);
      if (k == 65535 && last == k) return line->second.fY;
      const float u = static_cast<float>(k - first) / static_cast<float>(last - first);
      if (first <= k && k < last) return (1.0f - u) * line->first.fY + u * line->second.fY;
    }
  };
  std::vector<float> table(65537);
  for (int k = 0; k <= 65536; ++k) table.data()[k] = std::clamp(entry(std::min(k, 65535)), 0.0f, 1.0f);
  return table;
}

TEST(cHermiteSpline, RendersTheSameSamplesAsTheSlowForm) {
  std::vector<tPoints> sets = {Points({{0, 0}, {1, 1}}),
                               Points({{-0.5f, 2}, {0.5f, -1}, {1.5f, 0.5f}}),
                               Points({{2, 0.25f}, {3, 0.75f}}),
                               Points({{0.5f, 0}, {0.5f, 1}, {0.5f, 0.5f}}),
                               Points({{-1e-5f, 0.5f}, {1.00001f, 0.25f}}),
                               Points({{-1.0f / 65535.0f, 0.25f}, {0, 0.75f}, {1, 0.5f}})};
  std::mt19937 random(20);
  const auto in = [&](float low, float high) {
    return low + (high - low) * static_cast<float>(random() % 101) / 100.0f;
  };
  for (int i = 0; i < 10; ++i) {
    sets.emplace_back(2 + random() % 4);
    for (sControlPoint& point : sets.back())
      point = {{in(-0.3f, 1.3f), in(-0.3f, 1.3f)}, {in(-2, 3), in(-3, 3)}, {in(-2, 3), in(-3, 3)}, 0};
  }
  for (std::size_t i = 0; i < 4 * sets.size(); ++i) {
    cHermiteSpline spline;
    const float* table = Set(spline, static_cast<int>(i % 4), sets[i / 4]).GetFloatTable();
    const sControlPoint* points = spline.GetControlPoints();
    const auto slow = SlowTable(i % 4 == 2, tPoints(points, points + spline.GetCount()));
    EXPECT_TRUE(std::equal(slow.begin(), slow.end(), table)) << "set " << i / 4 << " mode " << i % 4;
  }
}

TEST(cHermiteSpline, CutsTheCurveToTheTable) {
  const std::tuple<tPoints, int, float> cases[] = {
      {Points({{0, 0}, {3, 1}}), 65535, 0.34f},                 // the step that passed 1 gives the end
      {Points({{0.999f, 0}, {1.000012f, 0.5f}}), 65535, 0.5f},  // the last point is in the last sample
      {Points({{-2, 0.5f}, {-1, 0.75f}}), 0, 0.75f},            // all left of 0: the tail starts there
      {Points({{-1e30f, 0.5f}, {1e38f, 0.75f}}), 0, 0.5f},      // beyond every integer
      {Points({{-kInfinity, 0.5f}, {kInfinity, 0.75f}}), 65535, 0.75f},
      {Points({{0.5f, 1}, {kNaN, 0.25f}, {0.75f, 0.5f}}), 0, 0.25f},  // NaN counts as 0
      {Points({{kNaN, kInfinity}, {kNaN, kNaN}}), 300, 0.0f}};
  for (const auto& [points, index, value] : cases) {
    cHermiteSpline spline;
    EXPECT_EQ(Set(spline, 2, points).GetFloatTable()[index], value) << points[0].fPoint.fX;
  }
}

TEST(cHermiteSpline, NumbersSortsAndSpreadsThePoints) {
  cHermiteSpline spline;
  Set(spline, 1, Points({{0.5f, 1}, {kNaN, 2}, {0.5f, 3}, {0, 4}, {kNaN, 5}, {0.5f, 6}, {5e-7f, 7}}));
  const unsigned int ids[] = {1, 4, 3, 6, 0, 2, 5};
  for (int i = 0; i < 7; ++i) EXPECT_EQ(spline.GetControlPoints()[i].fID, ids[i]) << i;
  EXPECT_EQ(spline.GetPointAt(3).fX, 1e-6f);
  EXPECT_EQ(spline.GetPointAt(5).fX, 0.5f + 1e-6f);
  EXPECT_EQ(spline.GetPointAt(6).fX, 0.5f + 1e-6f + 1e-6f);
}

TEST(cHermiteSpline, SetsTangentsByTheMode) {
  const tPoints points = Points({{0, 0}, {0.25f, 1}, {1, 0.5f}});
  const cVector2 differences[] = {{0.25f, 1}, {0.5f, 0.25f}, {0.75f, -0.5f}};
  for (const int mode : {-1, 0, 1, 2, 3, 4}) {
    cHermiteSpline got, want;
    Set(got, mode, points);
    Set(want, mode, points);
    for (int i = 0; i < 3; ++i) {
      const bool isComputed = mode == 0 || mode == 2, isKept = !isComputed && mode != 3;
      const cVector2 computed = isComputed ? differences[i] : cVector2(0.2f, 0);
      want.SetNextTangentAt(i, isKept ? points[0].fNextTangent : computed);
      want.SetPreviousTangentAt(i, isKept ? points[0].fPreviousTangent : computed);
    }
    EXPECT_TRUE(got == want) << mode;
  }
}

TEST(cHermiteSpline, EvaluatesByTheLowSixteenBits) {
  const cHermiteSpline spline;
  EXPECT_NEAR(spline.Evaluate(0.5f), 0.5f, 2e-5f);
  const float x[] = {0, 1, 1.00002f, 2, -0.5f, 1e30f, -1e30f, kInfinity, -kInfinity, kNaN};
  const int indices[] = {0, 65535, 0, 65534, 32769, 0, 0, 0, 0, 0};
  for (int i = 0; i < 10; ++i) EXPECT_EQ(spline.Evaluate(x[i]), spline.GetFloatTable()[indices[i]]) << x[i];
}

TEST(cHermiteSpline, DerivesTablesThatAreNeverStale) {
  cHermiteSpline spline;
  for (const bool isFloatTableFirst : {false, true, false}) {
    spline.MovePoint(1, {1, spline.GetPointAt(1).fY / 2});
    const float* table = isFloatTableFirst ? spline.GetFloatTable() : nullptr;
    const unsigned short* words = spline.Get16BitTable();
    const float* floats = spline.Get8BitInputFloatTable();
    const unsigned char* bytes = spline.Get8BitTable();
    table = spline.GetFloatTable();
    for (int k = 0; k < 65536; ++k) ASSERT_EQ(words[k], static_cast<int>(table[k] * 65535.0f));
    for (int j = 0; j < 256; ++j) ASSERT_EQ(floats[j], table[257 * j]);
    for (int j = 0; j < 256; ++j) ASSERT_EQ(bytes[j], static_cast<int>(table[254 * j] * 255.0f));
  }
}

TEST(cHermiteSpline, MovesAndRemovesPoints) {
  cHermiteSpline spline;
  Set(spline, 0, Points({{0, 0}, {0.5f, 0.25f}, {1, 1}}));
  EXPECT_EQ(spline.Evaluate(1.0f), 1.0f);
  EXPECT_EQ(spline.MovePoint(0, {0.5f, 0.75f}), 0);  // stays before its equal
  EXPECT_EQ(spline.MovePoint(0, {2, 0.125f}), 2);
  EXPECT_EQ(spline.GetPointAt(2).fY, 0.125f);
  EXPECT_EQ(spline.MovePoint(2, {kNaN, 0.5f}), 0);
  spline.RemovePointAt(1);
  EXPECT_EQ(spline.GetCount(), 2);
  EXPECT_EQ(spline.GetNextTangentAt(1).fY, 0.5f);
  EXPECT_EQ(spline.Evaluate(0.0f), 0.5f);  // the change has reached the table
}

TEST(cHermiteSpline, CopiesAndComparesPoints) {
  cHermiteSpline spline;
  const tPoints points = Points({{0, 0}, {0.5f, 0.25f}, {1, 1}});
  const cHermiteSpline copy(Set(spline, 1, points));
  spline.SetControlPoints(eSplineInterpolationMode_Supplied, 3, spline.GetControlPoints());
  EXPECT_TRUE(copy == spline);
  EXPECT_TRUE(copy != Set(spline, 5, points));
  EXPECT_TRUE(copy != Set(spline, 1, {points[0], points[1]}));
  EXPECT_TRUE(copy != Set(spline, 1, {points[1], points[0], points[2]}));  // other ids
  for (int i = 0; i < 3; ++i) {
    Set(spline, 1, points);
    cVector2* const fields[] = {&spline.GetPointAt(2), &spline.GetNextTangentAt(2),
                                &spline.GetPreviousTangentAt(0)};
    fields[i]->fY = 3;
    EXPECT_TRUE(copy != spline) << i;
    fields[i]->fY = kNaN;
    EXPECT_TRUE(spline != spline) << i;
  }
}

struct sShortSpline : cHermiteSpline {
  sShortSpline() { fCount = 1; }
};

TEST(cHermiteSpline, RefusesBadArgumentsAndChangesNothing) {
  cHermiteSpline s;
  const std::function<void(int)> byIndex[] = {[&](int i) { s.GetPointAt(i); },
                                              [&](int i) { s.GetNextTangentAt(i); },
                                              [&](int i) { s.GetPreviousTangentAt(i); },
                                              [&](int i) { s.SetNextTangentAt(i, {}); },
                                              [&](int i) { s.SetPreviousTangentAt(i, {}); },
                                              [&](int i) { s.MovePoint(i, {}); },
                                              [&](int i) { s.RemovePointAt(i); }};
  for (const auto& call : byIndex) {
    ExpectChecks("", {TM_ARG("Argument pIndex must be greater than or equal to zero.", call(-1)),
                      TM_ARG("Argument pIndex must be less than fCount.", call(2))});
  }
  const auto set = [&](int pCount) { s.SetControlPoints(eSplineInterpolationMode_Flat, pCount, nullptr); };
  ExpectChecks("", {TM_ARG("Argument pControlPointCount must be greater or equal than two.", set(1)),
                    TM_NULL("Argument pCPs cannot be null.", set(2)),
                    TM_STATE("Cannot remove control point. The curve must have at least two control points.",
                             s.RemovePointAt(1)),
                    TM_STATE("Method 'cHermiteSpline::Clone()' is not implemented.", s.Clone())});
  ExpectChecks(
      "void __cdecl TmEngine::cHermiteSpline::UpdatePointArray(void)",
      {TM_STATE("The curve must have at least two control points.", sShortSpline().UpdatePointArray())});
  EXPECT_TRUE(s == cHermiteSpline());
}

}  // namespace
}  // namespace TmEngine
