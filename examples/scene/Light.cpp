#include "examples/scene/Light.h"

#include "examples/scene/Material.h"
#include "examples/scene/Room.h"
#include "examples/scene/Sky.h"

namespace Scene {
namespace {

constexpr float kSunRadius = 0.0047f;  // radians
constexpr float kBulbRadius = 0.045f;
constexpr float kOpenRange = 0.55f;  // nearer surfaces than this shut indirect light out

/// Where light rays of a surface start: a little off it, so that it does not shade itself.
sVec3 Start(const sHit& pHit) {
  return pHit.fPosition + pHit.fNormal * 6.0e-4f;
}

sVec3 TurnedUp(sVec3 pNormal, float pX, float pY, float pZ) {
  const sFrame frame(pNormal);
  return frame.fU * pX + frame.fV * pY + pNormal * pZ;
}

/// A direction above the surface with unit normal pNormal, the more likely the closer to it.
sVec3 CosineDirection(sVec3 pNormal, cSampler& pSampler) {
  const float turn = 2.0f * kPi * pSampler.Next();
  const float squared = pSampler.Next();
  const float radius = std::sqrt(squared);
  return TurnedUp(pNormal, radius * std::cos(turn), radius * std::sin(turn), std::sqrt(1.0f - squared));
}

/// The vector whose product with a normal is the irradiance of a window of radiance 1 (Lambert's polygon
/// sum).
sVec3 WindowVector(const sWindow& pWindow, sVec3 pFrom) {
  const sVec3 a = pWindow.fCorner - pFrom;
  const sVec3 corners[4] = {Normalised(a), Normalised(a + pWindow.fEdge1),
                            Normalised(a + pWindow.fEdge1 + pWindow.fEdge2), Normalised(a + pWindow.fEdge2)};
  sVec3 sum;
  for (int i = 0; i < 4; ++i) {
    const sVec3 cross = Cross(corners[i], corners[(i + 1) % 4]);
    const float sine = std::max(Length(cross), 1.0e-6f);
    sum += cross * (-0.5f * std::atan2(sine, Dot(corners[i], corners[(i + 1) % 4])) / sine);
  }
  return sum;
}

/// Whether light from direction pTowards can reach pFrom through a window: all else is walls.
bool IsThroughWindow(sVec3 pFrom, sVec3 pTowards) {
  for (const sWindow& window : kWindows) {
    const sVec3 normal = Cross(window.fEdge1, window.fEdge2);
    const float distance = Dot(window.fCorner - pFrom, normal) / Dot(pTowards, normal);
    const sVec3 on = pFrom + pTowards * distance - window.fCorner;
    const float u = Dot(on, window.fEdge1) / Dot(window.fEdge1, window.fEdge1);
    const float v = Dot(on, window.fEdge2) / Dot(window.fEdge2, window.fEdge2);
    if (distance > 0.0f && std::min(u, v) >= 0.0f && std::max(u, v) <= 1.0f) return true;
  }
  return false;
}

}  // namespace

sVec3 cLight::Sun(const sHit& pHit, sVec3 pNormal, cSampler& pSampler) const {
  const float facing = Dot(pNormal, kToSun);
  if (facing <= 0.0f || Dot(pHit.fNormal, kToSun) <= 0.0f) return {};
  const float turn = 2.0f * kPi * pSampler.Next();
  const float radius = kSunRadius * std::sqrt(pSampler.Next());
  const sVec3 towards = TurnedUp(kToSun, radius * std::cos(turn), radius * std::sin(turn), 1.0f);
  const sVec3 start = Start(pHit);
  if (!IsThroughWindow(start, towards) || fShapes.IsBlocked({start, towards}, 100.0f, kFirstSolid)) return {};
  return kSunIrradiance * facing;
}

sVec3 cLight::Soft(const sHit& pHit, sVec3 pNormal, cSampler& pSampler) const {
  const sVec3 indirect = fProbes.Irradiance(pHit.fPosition + pHit.fNormal * 0.12f, pNormal, false);
  const sVec3 direct = Direct(pHit, pNormal, pSampler);
  return direct + indirect * Openness(pHit, pNormal, pSampler);
}

sVec3 cLight::Rough(const sHit& pHit) const {
  return fProbes.Irradiance(pHit.fPosition + pHit.fNormal * 0.12f, pHit.fNormal, true);
}

/// The windows' and the lamp's light: one shadow ray to one of them, to the stronger ones more often.
sVec3 cLight::Direct(const sHit& pHit, sVec3 pNormal, cSampler& pSampler) const {
  const sVec3 start = Start(pHit);
  sVec3 towards[3];
  sVec3 light[3];
  float upTo[3];
  float sum = 0.0f;
  for (int i = 0; i < 2; ++i) {
    const sWindow& window = kWindows[i];
    light[i] = kWindowRadiance * std::max(0.0f, Dot(WindowVector(window, start), pNormal));
    const float u = pSampler.Next();
    towards[i] = window.fCorner + window.fEdge1 * u + window.fEdge2 * pSampler.Next() - start;
  }
  towards[2] = kBulb + AnyDirection(pSampler) * kBulbRadius - start;
  const float squared = std::max(Dot(towards[2], towards[2]), 0.01f);
  light[2] = kBulbIntensity * (std::max(0.0f, Dot(towards[2], pNormal)) / (squared * std::sqrt(squared)));
  for (int i = 0; i < 3; ++i) upTo[i] = sum += Luminance(light[i]);
  const float choice = pSampler.Next() * sum;
  const int chosen = choice < upTo[0] ? 0 : choice < upTo[1] ? 1 : 2;
  const float weight = Luminance(light[chosen]);
  if (weight <= 1.0e-6f || Dot(towards[chosen], pHit.fNormal) <= 0.0f) return {};
  // Backwards, because what stops most rays (the lamp's shade, a window's frame) is at their far end.
  if (fShapes.IsBlocked({start + towards[chosen], towards[chosen] * -1.0f}, 1.0f, kFirstSolid)) return {};
  return light[chosen] * (sum / weight);
}

/// How far the surface is open to light from around; nearby things darken corners and folds.
float cLight::Openness(const sHit& pHit, sVec3 pNormal, cSampler& pSampler) const {
  sHit near;
  near.fDistance = kOpenRange;
  if (!fShapes.Find({Start(pHit), CosineDirection(pNormal, pSampler)}, near)) return 1.0f;
  const float distance = near.fDistance / kOpenRange;
  return distance * distance;
}

}  // namespace Scene
