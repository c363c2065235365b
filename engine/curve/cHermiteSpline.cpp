#include "engine/curve/cHermiteSpline.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "engine/base/TmCheck.h"

namespace TmEngine {
namespace {

constexpr char kSourceFile[] = ".\\cHermiteSpline.cpp";
constexpr float kLeastDistance = 1e-6f;  // between the x of neighbouring points
constexpr int kSteps = 100;              // of a segment

// The point that an index names, in the name of the caller if it names none.
sControlPoint& CheckedPoint(sControlPoint* pPoints, int pCount, int pIndex, const sThrowPlace& pPlace) {
  TM_CHECK_AT(pPlace, pIndex >= 0, cArgumentException,
              "Argument pIndex must be greater than or equal to zero.");
  TM_CHECK_AT(pPlace, pIndex < pCount, cArgumentException, "Argument pIndex must be less than fCount.");
  return pPoints[pIndex];
}

std::unique_ptr<sControlPoint[]> CopyPoints(const sControlPoint* pFrom, int pCount) {
  auto points = std::make_unique<sControlPoint[]>(static_cast<std::size_t>(pCount));
  std::copy_n(pFrom, pCount, points.get());
  return points;
}

// Sorting needs an order that holds for every input: an x that is NaN, which the table takes as 0, comes
// before all numbers.
bool IsBefore(const sControlPoint& pLeft, const sControlPoint& pRight) {
  const float left = pLeft.fPoint.fX;
  const float right = pRight.fPoint.fX;
  if (std::isnan(left) || std::isnan(right)) return std::isnan(left) && !std::isnan(right);
  return left < right;
}

// Keeps the x of sorted points apart, as far as floats of their size can be.
void SpreadPoints(sControlPoint* pPoints, int pCount) {
  for (int i = 1; i < pCount; ++i) {
    const float before = pPoints[i - 1].fPoint.fX;
    float& x = pPoints[i].fPoint.fX;
    if (x - before < kLeastDistance) x = before + kLeastDistance;
  }
}

bool IsSame(const cVector2& pLeft, const cVector2& pRight) {
  return pLeft.fX == pRight.fX && pLeft.fY == pRight.fY;
}

bool IsSamePoint(const sControlPoint& pLeft, const sControlPoint& pRight) {
  return IsSame(pLeft.fPoint, pRight.fPoint) && IsSame(pLeft.fNextTangent, pRight.fNextTangent) &&
         IsSame(pLeft.fPreviousTangent, pRight.fPreviousTangent) && pLeft.fID == pRight.fID;
}

void SetTangents(sControlPoint& pPoint, const cVector2& pTangent) {
  pPoint.fNextTangent = pTangent;
  pPoint.fPreviousTangent = pTangent;
}

// Tangents are half the way from the point before to the point after. An end has one neighbour, whose
// distance counts twice.
void SetDifferenceTangents(sControlPoint* pPoints, int pCount) {
  for (int i = 0; i < pCount; ++i) {
    const bool isEnd = i == 0 || i == pCount - 1;
    const cVector2& before = pPoints[std::max(i - 1, 0)].fPoint;
    const cVector2& after = pPoints[std::min(i + 1, pCount - 1)].fPoint;
    const float factor = isEnd ? 2.0f : 1.0f;
    SetTangents(pPoints[i],
                cVector2((after.fX - before.fX) * factor * 0.5f, (after.fY - before.fY) * factor * 0.5f));
  }
}

// Mode 1 and modes that are none leave the tangents alone.
void UpdateTangents(eSplineInterpolationMode pMode, sControlPoint* pPoints, int pCount) {
  if (pMode == eSplineInterpolationMode_FiniteDifference || pMode == eSplineInterpolationMode_Linear) {
    SetDifferenceTangents(pPoints, pCount);
  } else if (pMode == eSplineInterpolationMode_Flat) {
    for (int i = 0; i < pCount; ++i) SetTangents(pPoints[i], cVector2(0.2f, 0.0f));
  }
}

// One coordinate of a segment as a polynomial of the segment's parameter.
struct sCubic {
  float fA, fB, fC, fD;
  float At(float pS) const { return ((fA * pS + fB) * pS + fC) * pS + fD; }
};

sCubic HermiteCubic(float p0, float p1, float pT0, float pT1) {
  return {2.0f * p0 - 2.0f * p1 + pT0 + pT1, 3.0f * p1 - 3.0f * p0 - 2.0f * pT0 - pT1, pT0, p0};
}

sCubic StraightLine(float p0, float p1) {
  return {0.0f, 0.0f, p1 - p0, p0};
}

// NaN becomes 0.
float ClampToUnit(float pValue) {
  if (!(pValue >= 0.0f)) return 0.0f;
  return pValue > 1.0f ? 1.0f : pValue;
}

// Draws the line between two points of the curve, unless the second lies in the same sample or further left.
// The second point's own sample belongs to the next line; the last sample has none after it.
bool DrawLine(const cVector2& pFrom, const cVector2& pTo, float* pTable) {
  const int first = UnitToIndex(pFrom.fX);
  const int last = UnitToIndex(pTo.fX);
  if (last <= first) return false;
  const float length = static_cast<float>(last - first);
  for (int k = first; k < last; ++k) {
    const float u = static_cast<float>(k - first) / length;
    pTable[k] = ClampToUnit((1.0f - u) * pFrom.fY + u * pTo.fY);
  }
  if (last == kLastIndex) pTable[last] = ClampToUnit(pTo.fY);
  return true;
}

// Short steps join up: a line starts where the line before it ended, not at every step.
void DrawSegment(const sControlPoint& pFrom, const sControlPoint& pTo, bool pStraight, float* pTable) {
  const cVector2& p0 = pFrom.fPoint;
  const cVector2& p1 = pTo.fPoint;
  const cVector2& t0 = pFrom.fNextTangent;
  const cVector2& t1 = pTo.fPreviousTangent;
  const sCubic x = pStraight ? StraightLine(p0.fX, p1.fX) : HermiteCubic(p0.fX, p1.fX, t0.fX, t1.fX);
  const sCubic y = pStraight ? StraightLine(p0.fY, p1.fY) : HermiteCubic(p0.fY, p1.fY, t0.fY, t1.fY);
  cVector2 start = p0;
  for (int j = 1; j <= kSteps; ++j) {
    const float s = static_cast<float>(j) / 100.0f;
    const cVector2 point = j == kSteps ? p1 : cVector2(x.At(s), y.At(s));
    if (DrawLine(start, point, pTable)) start = point;
  }
}

// Left of the first point the curve is level. A point so far left that its sample would be below 0 has no
// head.
void DrawHead(const cVector2& pFirst, float* pTable) {
  const float position = pFirst.fX * 65535.0f;
  if (position <= -1.0f) return;
  std::fill_n(pTable, ClampToIndex(position, kLastIndex) + 1, ClampToUnit(pFirst.fY));
}

// Right of the last point as well. A point whose sample would be beyond the table has no tail.
void DrawTail(const cVector2& pLast, float* pTable) {
  const float position = pLast.fX * 65535.0f;
  if (position >= 65536.0f) return;
  std::fill(pTable + ClampToIndex(position, kLastIndex), pTable + kTableSize, ClampToUnit(pLast.fY));
}

}  // namespace

cHermiteSpline::cHermiteSpline() : fControlPoints(std::make_unique<sControlPoint[]>(2)), fCount(2) {
  fControlPoints[1].fPoint = cVector2(1.0f, 1.0f);
  cHermiteSpline::UpdatePointArray();
}

cHermiteSpline::cHermiteSpline(const cHermiteSpline& pFrom) : cTransfer() {
  SetControlPoints(pFrom.fMode, pFrom.fCount, pFrom.fControlPoints.get());
  cHermiteSpline::UpdatePointArray();
}

cHermiteSpline::~cHermiteSpline() = default;

cTransfer* cHermiteSpline::Clone() const {
  static constexpr char kSignature[] =
      "class TmEngine::cTransfer *__cdecl TmEngine::cHermiteSpline::Clone(void) const";
  Throw_cInvalidOperationException("Method 'cHermiteSpline::Clone()' is not implemented.", TM_HERE);
}

float cHermiteSpline::Evaluate(float pX) const {
  const float* table = GetFloatTable();
  const float position = pX * 65535.0f;
  // The low 16 bits of all floats from 2^40 on are 0; infinity and NaN, which have none, join them.
  if (!(std::fabs(position) < 0x1p40f)) return table[0];
  return table[static_cast<std::int64_t>(position) & 0xFFFF];
}

bool cHermiteSpline::operator==(const cHermiteSpline& pOther) const {
  const sControlPoint* points = fControlPoints.get();
  return fMode == pOther.fMode && fCount == pOther.fCount &&
         std::equal(points, points + fCount, pOther.fControlPoints.get(), IsSamePoint);
}

void cHermiteSpline::UpdatePointArray() {
  static constexpr char kSignature[] = "void __cdecl TmEngine::cHermiteSpline::UpdatePointArray(void)";
  TM_CHECK(fCount >= 2, cInvalidOperationException, "The curve must have at least two control points.");
  sControlPoint* points = fControlPoints.get();
  for (int i = 0; i < fCount; ++i) points[i].fID = static_cast<unsigned int>(i);
  std::stable_sort(points, points + fCount, IsBefore);
  SpreadPoints(points, fCount);
  UpdateTangents(fMode, points, fCount);
  Invalidate();
}

const float* cHermiteSpline::GetFloatTable() const {
  if (!fFloatTableValid) BuildFloatTable();
  return fFloatTable.get();
}

const unsigned short* cHermiteSpline::Get16BitTable() const {
  if (!fFloatTableValid || !f16BitTableValid) Build16BitTable();
  return f16BitTable.get();
}

const float* cHermiteSpline::Get8BitInputFloatTable() const {
  if (!fFloatTableValid || !f8BitInputFloatTableValid) Build8BitInputFloatTable();
  return f8BitInputFloatTable.get();
}

const unsigned char* cHermiteSpline::Get8BitTable() const {
  if (!fFloatTableValid || !f8BitTableValid) Build8BitTable();
  return f8BitTable.get();
}

void cHermiteSpline::Invalidate() {
  fFloatTableValid = false;
}

void cHermiteSpline::BuildFloatTable() const {
  float* table = fFloatTable.get();
  const sControlPoint* points = fControlPoints.get();
  const bool isStraight = fMode == eSplineInterpolationMode_Linear;
  for (int i = 1; i < fCount; ++i) DrawSegment(points[i - 1], points[i], isStraight, table);
  DrawHead(points[0].fPoint, table);
  DrawTail(points[fCount - 1].fPoint, table);
  table[kTableSize] = table[kLastIndex];
  fFloatTableValid = true;
  // What was derived from the former samples must not pass for current beside the new ones.
  f16BitTableValid = f8BitInputFloatTableValid = f8BitTableValid = false;
}

void cHermiteSpline::Build16BitTable() const {
  const float* samples = GetFloatTable();
  unsigned short* table = f16BitTable.get();
  for (int k = 0; k < kTableSize; ++k) table[k] = static_cast<unsigned short>(UnitToIndex(samples[k]));
  f16BitTableValid = true;
}

void cHermiteSpline::Build8BitInputFloatTable() const {
  const float* samples = GetFloatTable();
  float* table = f8BitInputFloatTable.get();
  for (int j = 0; j < 256; ++j) table[j] = samples[257 * j];
  f8BitInputFloatTableValid = true;
}

void cHermiteSpline::Build8BitTable() const {
  const float* samples = GetFloatTable();
  unsigned char* table = f8BitTable.get();
  // 254, not 257: the last entry stands for the input 64770 / 65535.
  for (int j = 0; j < 256; ++j)
    table[j] = static_cast<unsigned char>(ClampToIndex(samples[254 * j] * 255.0f, 255));
  f8BitTableValid = true;
}

void cHermiteSpline::SetControlPoints(eSplineInterpolationMode pMode, int pControlPointCount,
                                      const sControlPoint* pCPs) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cHermiteSpline::SetControlPoints(enum TmEngine::eSplineInterpolationMode,int,"
      "const struct TmEngine::sControlPoint *)";
  TM_CHECK(pControlPointCount >= 2, cArgumentException,
           "Argument pControlPointCount must be greater or equal than two.");
  TM_CHECK(pCPs != nullptr, cArgumentNullException, "Argument pCPs cannot be null.");
  ReplacePoints(pMode, pControlPointCount, CopyPoints(pCPs, pControlPointCount));
}

cVector2& cHermiteSpline::GetPointAt(int pIndex) {
  static constexpr char kSignature[] =
      "class TmEngine::cVector2 &__cdecl TmEngine::cHermiteSpline::GetPointAt(int)";
  return CheckedPoint(fControlPoints.get(), fCount, pIndex, TM_HERE).fPoint;
}

cVector2& cHermiteSpline::GetNextTangentAt(int pIndex) {
  static constexpr char kSignature[] =
      "class TmEngine::cVector2 &__cdecl TmEngine::cHermiteSpline::GetNextTangentAt(int)";
  return CheckedPoint(fControlPoints.get(), fCount, pIndex, TM_HERE).fNextTangent;
}

cVector2& cHermiteSpline::GetPreviousTangentAt(int pIndex) {
  static constexpr char kSignature[] =
      "class TmEngine::cVector2 &__cdecl TmEngine::cHermiteSpline::GetPreviousTangentAt(int)";
  return CheckedPoint(fControlPoints.get(), fCount, pIndex, TM_HERE).fPreviousTangent;
}

void cHermiteSpline::SetNextTangentAt(int pIndex, const cVector2& pTangent) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cHermiteSpline::SetNextTangentAt(int,const class TmEngine::cVector2 &)";
  CheckedPoint(fControlPoints.get(), fCount, pIndex, TM_HERE).fNextTangent = pTangent;
}

void cHermiteSpline::SetPreviousTangentAt(int pIndex, const cVector2& pTangent) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cHermiteSpline::SetPreviousTangentAt(int,const class TmEngine::cVector2 &)";
  CheckedPoint(fControlPoints.get(), fCount, pIndex, TM_HERE).fPreviousTangent = pTangent;
}

int cHermiteSpline::MovePoint(int pIndex, const cVector2& pPoint) {
  static constexpr char kSignature[] =
      "int __cdecl TmEngine::cHermiteSpline::MovePoint(int,const class TmEngine::cVector2 &)";
  CheckedPoint(fControlPoints.get(), fCount, pIndex, TM_HERE).fPoint = pPoint;
  UpdatePointArray();
  const sControlPoint* points = fControlPoints.get();
  const unsigned int id = static_cast<unsigned int>(pIndex);  // the update numbers the points before it sorts
  const auto isMoved = [id](const sControlPoint& pCandidate) { return pCandidate.fID == id; };
  return static_cast<int>(std::find_if(points, points + fCount, isMoved) - points);
}

void cHermiteSpline::RemovePointAt(int pIndex) {
  static constexpr char kSignature[] = "void __cdecl TmEngine::cHermiteSpline::RemovePointAt(int)";
  CheckedPoint(fControlPoints.get(), fCount, pIndex, TM_HERE);
  TM_CHECK(fCount > 2, cInvalidOperationException,
           "Cannot remove control point. The curve must have at least two control points.");
  auto points = CopyPoints(fControlPoints.get(), fCount);
  std::copy(points.get() + pIndex + 1, points.get() + fCount, points.get() + pIndex);
  ReplacePoints(fMode, fCount - 1, std::move(points));
}

void cHermiteSpline::ReplacePoints(eSplineInterpolationMode pMode, int pCount,
                                   std::unique_ptr<sControlPoint[]> pPoints) {
  const auto exchange = [&] {
    std::swap(fMode, pMode);
    std::swap(fCount, pCount);
    std::swap(fControlPoints, pPoints);
  };
  exchange();
  try {
    UpdatePointArray();
  } catch (...) {
    exchange();
    throw;
  }
}

void CheckKeyFrames(int pControlPointCount, int pKeyFrameCount, const void* pCPs,
                    const sKeyFrameTexts& pTexts, const char* pSignature) {
  const char* const kSignature = pSignature;
  TM_CHECK(pControlPointCount >= 2, cArgumentException, pTexts.fPointCount);
  TM_CHECK(pKeyFrameCount >= 1, cArgumentException, pTexts.fKeyFrameCount);
  TM_CHECK(pCPs != nullptr, cArgumentNullException, "Argument pCPs cannot be null.");
}

}  // namespace TmEngine
