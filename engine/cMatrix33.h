#pragma once

#include "engine/cVector.h"

namespace TmEngine {

/// 3 x 3 matrix of floats, row-major (element 3 r + c is row r, column c), applied to column vectors as M *
/// v. A plain value: image operations take it by copy. Sums run left to right, in the matrix's own precision.
class cMatrix33 {
 public:
  constexpr cMatrix33() = default;
  constexpr cMatrix33(float p0, float p1, float p2, float p3, float p4, float p5, float p6, float p7,
                      float p8)
      : fM{p0, p1, p2, p3, p4, p5, p6, p7, p8} {}

  constexpr float operator[](int pIndex) const { return fM[pIndex]; }
  constexpr float& operator[](int pIndex) { return fM[pIndex]; }
  const float* Elements() const { return fM; }  ///< Nine of them.

  float Determinant() const;
  /// Writes the transposed cofactor matrix to pTo (which may be this matrix) and returns it.
  cMatrix33& Adjugate(cMatrix33& pTo) const;
  /// Writes the inverse to pTo (which may be this matrix). False, and pTo untouched, when the determinant is
  /// exactly 0; a nearly singular matrix is inverted.
  bool Inverse(cMatrix33& pTo) const;

 private:
  float fM[9] = {};
};

cMatrix33 operator*(const cMatrix33& pA, const cMatrix33& pB);
cVector3 operator*(const cMatrix33& pM, const cVector3& pV);
cMatrix33 operator/(const cMatrix33& pM, float pScalar);  ///< Every element divided, not multiplied by 1/s.

/// The double-precision twin, in which matrices of colour spaces are derived.
class cMatrix33d {
 public:
  constexpr cMatrix33d() = default;
  constexpr cMatrix33d(double p0, double p1, double p2, double p3, double p4, double p5, double p6, double p7,
                       double p8)
      : fM{p0, p1, p2, p3, p4, p5, p6, p7, p8} {}

  constexpr double operator[](int pIndex) const { return fM[pIndex]; }
  constexpr double& operator[](int pIndex) { return fM[pIndex]; }

  double Determinant() const;
  cMatrix33d& Adjugate(cMatrix33d& pTo) const;
  bool Inverse(cMatrix33d& pTo) const;
  /// Every element rounded to the nearest float.
  cMatrix33 ToFloat() const;

 private:
  double fM[9] = {};
};

cMatrix33d operator*(const cMatrix33d& pA, const cMatrix33d& pB);
cVector3d operator*(const cMatrix33d& pM, const cVector3d& pV);
cMatrix33d operator/(const cMatrix33d& pM, double pScalar);

}  // namespace TmEngine
