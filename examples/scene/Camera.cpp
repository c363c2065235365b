#include "examples/scene/Camera.h"

namespace Scene {
namespace {

constexpr sVec3 kRoomEye = {-0.55f, 1.60f, 5.80f};
constexpr sVec3 kRoomTarget = {0.20f, 1.02f, 0.0f};
constexpr float kHalfField = 0.55f;  // tangent of half the angle that a square picture would show
constexpr sVec3 kPanoramaEye = {0.55f, 1.45f, 4.05f};

}  // namespace

cCamera::cCamera(eView pView, int pWidth, int pHeight)
    : fView(pView), fWidth(static_cast<float>(pWidth)), fHeight(static_cast<float>(pHeight)) {}

sRay cCamera::RayThrough(float pX, float pY) const {
  if (fView == eView::Panorama) return PanoramaRay(pX, pY);
  const float scale = 2.0f * kHalfField / std::sqrt(fWidth * fHeight);
  const sVec3 ahead = Normalised(kRoomTarget - kRoomEye);
  const sVec3 right = Normalised(Cross(ahead, {0.0f, 1.0f, 0.0f}));
  const sVec3 up = Cross(right, ahead);
  const sVec3 across = right * ((pX - 0.5f * fWidth) * scale);
  return {kRoomEye, Normalised(ahead + across + up * ((0.5f * fHeight - pY) * scale))};
}

sRay cCamera::PanoramaRay(float pX, float pY) const {
  const float turn = 2.0f * kPi * (pX / fWidth - 0.5f);
  const float rise = kPi * (0.5f - pY / fHeight);
  return {kPanoramaEye, {std::cos(rise) * std::sin(turn), std::sin(rise), -std::cos(rise) * std::cos(turn)}};
}

float cCamera::Vignette(float pX, float pY) const {
  if (fView == eView::Panorama) return 1.0f;
  const float x = pX / fWidth - 0.5f;
  const float y = pY / fHeight - 0.5f;
  const float squared = 1.0f + 0.5f * (x * x + y * y);
  return 1.0f / (squared * squared);
}

}  // namespace Scene
