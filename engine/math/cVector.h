#pragma once

namespace TmEngine {

/// Two floats: a chromaticity (x, y), or a point or tangent of a curve (input, output).
class cVector2 {
 public:
  constexpr cVector2() = default;
  constexpr cVector2(float pX, float pY) : fX(pX), fY(pY) {}
  constexpr cVector2& Copy(cVector2& pTo) const { return pTo = *this; }

  float fX = 0.0f;
  float fY = 0.0f;
};

/// The double-precision twin of cVector2.
class cVector2d {
 public:
  constexpr cVector2d() = default;
  constexpr cVector2d(double pX, double pY) : fX(pX), fY(pY) {}
  constexpr cVector2d& Copy(cVector2d& pTo) const { return pTo = *this; }

  double fX = 0.0;
  double fY = 0.0;
};

/// Three floats in order; for colour X, Y, Z or R, G, B.
class cVector3 {
 public:
  constexpr cVector3() = default;
  constexpr cVector3(float p0, float p1, float p2) : fV{p0, p1, p2} {}
  constexpr cVector3& Copy(cVector3& pTo) const { return pTo = *this; }

  constexpr float operator[](int pIndex) const { return fV[pIndex]; }
  constexpr float& operator[](int pIndex) { return fV[pIndex]; }

 private:
  float fV[3] = {};
};

/// The double-precision twin of cVector3.
class cVector3d {
 public:
  constexpr cVector3d() = default;
  constexpr cVector3d(double p0, double p1, double p2) : fV{p0, p1, p2} {}
  constexpr cVector3d& Copy(cVector3d& pTo) const { return pTo = *this; }

  constexpr double operator[](int pIndex) const { return fV[pIndex]; }
  constexpr double& operator[](int pIndex) { return fV[pIndex]; }

 private:
  double fV[3] = {};
};

}  // namespace TmEngine
