#include "engine/curve/cContrastCurve.h"

namespace TmEngine {
namespace {

constexpr int kKeyFrameCount = 5;
constexpr int kPointCount = 2;

// A row per point: the point, its previous tangent, its next tangent. The tangents (1, 1) belong to no
// segment.
constexpr float kKeyFrames[kKeyFrameCount * kPointCount][6] = {
    {0.0f, 0.0f, 1.0f, 1.0f, 0.308f, 1.09f},   // steep from black, level towards white
    {1.0f, 1.0f, 1.752f, 2.714f, 1.0f, 1.0f},  //
    {0.0f, 0.0f, 1.0f, 1.0f, 0.449f, 0.769f},  // like the first, weaker
    {1.0f, 1.0f, 2.173f, 2.634f, 1.0f, 1.0f},  //
    {0.0f, 0.0f, 1.0f, 1.0f, 0.0f, 0.0f},      // the diagonal
    {1.0f, 1.0f, 0.0f, 0.0f, 1.0f, 1.0f},      //
    {0.0f, 0.0f, 1.0f, 1.0f, 0.5f, 0.0f},      // level ends, steep in the middle
    {1.0f, 1.0f, 1.25f, 0.0f, 1.0f, 1.0f},     //
    {0.0f, 0.0f, 1.0f, 1.0f, 1.0f, 0.0f},      // like the fourth, stronger
    {1.0f, 1.0f, 2.22f, 0.0f, 1.0f, 1.0f},
};

}  // namespace

cContrastCurve::cContrastCurve() {
  SetKeyFrames(eSplineInterpolationMode_Supplied, kPointCount, kKeyFrameCount, kKeyFrames[0]);
}

cContrastCurve::~cContrastCurve() = default;

}  // namespace TmEngine
