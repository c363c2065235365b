#include "engine/curve/cInterpolatedHermiteSpline.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace TmEngine {
namespace {

constexpr int kInitialKeyFrames = 2;
constexpr int kFloatsPerPoint = 6;

// Both forms of SetKeyFrames make the same checks, with different texts.
constexpr sKeyFrameTexts kRecordTexts = {"Argument pControlPointCount must be greater than or equal to two.",
                                         "Argument pKeyFrameCount must be greater than or equal to one."};
constexpr sKeyFrameTexts kFloatTexts = {"Argument pControlPointCount must be greater or equal than two.",
                                        "Argument pKeyFrameCount must be greater or equal than one."};

std::size_t RecordCount(int pControlPointCount, int pKeyFrameCount) {
  return static_cast<std::size_t>(pControlPointCount) * static_cast<std::size_t>(pKeyFrameCount);
}

// A position between two neighbouring frames: the frame before it, and the share of the frame after it.
struct sPosition {
  int fFrame;
  float fWeight;
};

sPosition FindPosition(float pT, int pKeyFrameCount) {
  const sPosition end = {pKeyFrameCount - 2, 1.0f};
  if (pT >= 1.0f) return end;
  if (!(pT >= 0.0f)) return {0, 0.0f};  // NaN as well
  const float position = static_cast<float>(pKeyFrameCount - 1) * pT;
  const int frame = static_cast<int>(position);
  if (frame > end.fFrame) return end;  // a frame count over 2^24 may have been rounded up
  return {frame, position - static_cast<float>(frame)};
}

cVector2 Blend(const cVector2& pFrom, const cVector2& pTo, float pWeight) {
  return {(1.0f - pWeight) * pFrom.fX + pWeight * pTo.fX, (1.0f - pWeight) * pFrom.fY + pWeight * pTo.fY};
}

}  // namespace

cInterpolatedHermiteSpline::cInterpolatedHermiteSpline() {
  LayOutKeyFrames(kInitialKeyFrames);
}

cInterpolatedHermiteSpline::cInterpolatedHermiteSpline(const cHermiteSpline& pFrom) : cHermiteSpline(pFrom) {
  LayOutKeyFrames(kInitialKeyFrames);
}

cInterpolatedHermiteSpline::cInterpolatedHermiteSpline(const cInterpolatedHermiteSpline& pFrom)
    : cInterpolatedHermiteSpline(static_cast<const cHermiteSpline&>(pFrom)) {}

cInterpolatedHermiteSpline::~cInterpolatedHermiteSpline() = default;

void cInterpolatedHermiteSpline::UpdatePointArray() {
  cHermiteSpline::UpdatePointArray();
  if (fAllocatedPointCount != fCount) LayOutKeyFrames(fKeyFrameCount);
}

void cInterpolatedHermiteSpline::SetKeyFrames(eSplineInterpolationMode pMode, int pControlPointCount,
                                              int pKeyFrameCount, const sControlPoint* pCPs) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cInterpolatedHermiteSpline::SetKeyFrames(enum "
      "TmEngine::eSplineInterpolationMode,int,int,const struct TmEngine::sControlPoint *)";
  CheckKeyFrames(pControlPointCount, pKeyFrameCount, pCPs, kRecordTexts, kSignature);
  const std::size_t count = RecordCount(pControlPointCount, pKeyFrameCount);
  auto keyFrames = std::make_unique<sControlPoint[]>(count);
  std::copy_n(pCPs, count, keyFrames.get());
  AdoptKeyFrames(pMode, pControlPointCount, pKeyFrameCount, std::move(keyFrames));
}

void cInterpolatedHermiteSpline::SetKeyFrames(eSplineInterpolationMode pMode, int pControlPointCount,
                                              int pKeyFrameCount, const float* pCPs) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cInterpolatedHermiteSpline::SetKeyFrames(enum "
      "TmEngine::eSplineInterpolationMode,int,int,const float *)";
  CheckKeyFrames(pControlPointCount, pKeyFrameCount, pCPs, kFloatTexts, kSignature);
  const std::size_t count = RecordCount(pControlPointCount, pKeyFrameCount);
  auto keyFrames = std::make_unique<sControlPoint[]>(count);
  for (std::size_t i = 0; i < count; ++i) {
    const float* from = pCPs + kFloatsPerPoint * i;
    keyFrames[i].fPoint = cVector2(from[0], from[1]);
    keyFrames[i].fPreviousTangent = cVector2(from[2], from[3]);
    keyFrames[i].fNextTangent = cVector2(from[4], from[5]);
  }
  AdoptKeyFrames(pMode, pControlPointCount, pKeyFrameCount, std::move(keyFrames));
}

void cInterpolatedHermiteSpline::InterpolateKeyFrames(float pT) {
  if (fKeyFrameCount < 2) return;
  const sPosition position = FindPosition(pT, fKeyFrameCount);
  const sControlPoint* from = fKeyFrames.get() + static_cast<std::ptrdiff_t>(position.fFrame) * fCount;
  const sControlPoint* to = from + fCount;
  for (int j = 0; j < fCount; ++j) {
    sControlPoint& point = fControlPoints.get()[j];
    point.fPoint = Blend(from[j].fPoint, to[j].fPoint, position.fWeight);
    point.fNextTangent = Blend(from[j].fNextTangent, to[j].fNextTangent, position.fWeight);
    point.fPreviousTangent = Blend(from[j].fPreviousTangent, to[j].fPreviousTangent, position.fWeight);
  }
  UpdatePointArray();
}

void cInterpolatedHermiteSpline::LayOutKeyFrames(int pKeyFrameCount) {
  auto keyFrames = std::make_unique<sControlPoint[]>(RecordCount(fCount, pKeyFrameCount));
  sControlPoint* to = keyFrames.get();
  for (int frame = 0; frame < pKeyFrameCount; ++frame) to = std::copy_n(fControlPoints.get(), fCount, to);
  fKeyFrames = std::move(keyFrames);
  fKeyFrameCount = pKeyFrameCount;
  fAllocatedPointCount = fCount;
}

// The point count of the layout is set before the points change: the update would lay the frames out anew.
// All memory is had before anything changes.
void cInterpolatedHermiteSpline::AdoptKeyFrames(eSplineInterpolationMode pMode, int pControlPointCount,
                                                int pKeyFrameCount,
                                                std::unique_ptr<sControlPoint[]> pKeyFrames) {
  auto points = std::make_unique<sControlPoint[]>(static_cast<std::size_t>(pControlPointCount));
  std::copy_n(pKeyFrames.get(), pControlPointCount, points.get());
  fKeyFrames = std::move(pKeyFrames);
  fKeyFrameCount = pKeyFrameCount;
  fAllocatedPointCount = pControlPointCount;
  ReplacePoints(pMode, pControlPointCount, std::move(points));
}

}  // namespace TmEngine
