#pragma once

#include <algorithm>
#include <cmath>

/// Three floats: a place in metres (x right, y up, the camera looks towards -z), a direction, or a linear
/// RGB colour with sRGB primaries.

namespace Scene {

inline constexpr float kPi = 3.14159265f;

struct sVec3 {
  float fX = 0.0f;
  float fY = 0.0f;
  float fZ = 0.0f;

  float operator[](int pAxis) const { return pAxis == 0 ? fX : pAxis == 1 ? fY : fZ; }
  float& operator[](int pAxis) { return pAxis == 0 ? fX : pAxis == 1 ? fY : fZ; }
};

inline sVec3 operator+(sVec3 pA, sVec3 pB) {
  return {pA.fX + pB.fX, pA.fY + pB.fY, pA.fZ + pB.fZ};
}
inline sVec3 operator-(sVec3 pA, sVec3 pB) {
  return {pA.fX - pB.fX, pA.fY - pB.fY, pA.fZ - pB.fZ};
}
inline sVec3 operator*(sVec3 pA, sVec3 pB) {
  return {pA.fX * pB.fX, pA.fY * pB.fY, pA.fZ * pB.fZ};
}
inline sVec3 operator*(sVec3 pA, float pB) {
  return {pA.fX * pB, pA.fY * pB, pA.fZ * pB};
}
inline sVec3& operator+=(sVec3& pA, sVec3 pB) {
  return pA = pA + pB;
}

inline float Dot(sVec3 pA, sVec3 pB) {
  return pA.fX * pB.fX + pA.fY * pB.fY + pA.fZ * pB.fZ;
}
inline float Length(sVec3 pA) {
  return std::sqrt(Dot(pA, pA));
}
inline sVec3 Normalised(sVec3 pA) {
  return pA * (1.0f / Length(pA));
}
inline sVec3 Cross(sVec3 pA, sVec3 pB) {
  return {pA.fY * pB.fZ - pA.fZ * pB.fY, pA.fZ * pB.fX - pA.fX * pB.fZ, pA.fX * pB.fY - pA.fY * pB.fX};
}
inline sVec3 Min(sVec3 pA, sVec3 pB) {
  return {std::min(pA.fX, pB.fX), std::min(pA.fY, pB.fY), std::min(pA.fZ, pB.fZ)};
}
inline sVec3 Max(sVec3 pA, sVec3 pB) {
  return {std::max(pA.fX, pB.fX), std::max(pA.fY, pB.fY), std::max(pA.fZ, pB.fZ)};
}
inline float Clamp01(float pV) {
  return std::min(std::max(pV, 0.0f), 1.0f);
}
inline float Mix(float pA, float pB, float pF) {
  return pA + (pB - pA) * pF;
}
inline sVec3 Mix(sVec3 pA, sVec3 pB, float pF) {
  return pA + (pB - pA) * pF;
}
inline float SmoothStep(float pFrom, float pTo, float pV) {
  const float f = Clamp01((pV - pFrom) / (pTo - pFrom));
  return f * f * (3.0f - 2.0f * f);
}
inline float Luminance(sVec3 pC) {
  return 0.2126f * pC.fX + 0.7152f * pC.fY + 0.0722f * pC.fZ;
}

/// Two unit vectors at right angles to the unit vector pNormal and to each other.
struct sFrame {
  sVec3 fU;
  sVec3 fV;

  explicit sFrame(sVec3 pNormal)
      : fU(Normalised(Cross(std::fabs(pNormal.fY) > 0.9f ? sVec3{1.0f, 0.0f, 0.0f} : sVec3{0.0f, 1.0f, 0.0f},
                            pNormal))),
        fV(Cross(pNormal, fU)) {}
};

}  // namespace Scene
