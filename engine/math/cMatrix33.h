#pragma once

#include "engine/math/cVector.h"

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
  // What follows writes its result to pTo, which may be an operand, and returns pTo.
  cMatrix33& Copy(cMatrix33& pTo) const { return pTo = *this; }
  cMatrix33& Multiply(const cMatrix33& pB, cMatrix33& pTo) const;
  cVector3& Multiply(const cVector3& pV, cVector3& pTo) const;
  cMatrix33& Divide(float pScalar, cMatrix33& pTo) const;  ///< Every element divided, not multiplied by 1/s.
  /// The transposed cofactor matrix.
  cMatrix33& Adjugate(cMatrix33& pTo) const;
  /// Writes the inverse to pTo (which may be this matrix). False, and pTo untouched, when the determinant is
  /// exactly 0; a nearly singular matrix is inverted.
  bool Inverse(cMatrix33& pTo) const;

 private:
  float fM[9] = {};
};

inline cMatrix33 operator*(const cMatrix33& pA, const cMatrix33& pB) {
  cMatrix33 product;
  return pA.Multiply(pB, product);
}
inline cVector3 operator*(const cMatrix33& pM, const cVector3& pV) {
  cVector3 product;
  return pM.Multiply(pV, product);
}
inline cMatrix33 operator/(const cMatrix33& pM, float pScalar) {
  cMatrix33 quotient;
  return pM.Divide(pScalar, quotient);
}

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
  cMatrix33d& Copy(cMatrix33d& pTo) const { return pTo = *this; }
  cMatrix33d& Multiply(const cMatrix33d& pB, cMatrix33d& pTo) const;
  cVector3d& Multiply(const cVector3d& pV, cVector3d& pTo) const;
  cMatrix33d& Divide(double pScalar, cMatrix33d& pTo) const;
  cMatrix33d& Adjugate(cMatrix33d& pTo) const;
  bool Inverse(cMatrix33d& pTo) const;
  /// Every element rounded to the nearest float.
  cMatrix33 ToFloat() const;

 private:
  double fM[9] = {};
};

inline cMatrix33d operator*(const cMatrix33d& pA, const cMatrix33d& pB) {
  cMatrix33d product;
  return pA.Multiply(pB, product);
}
inline cVector3d operator*(const cMatrix33d& pM, const cVector3d& pV) {
  cVector3d product;
  return pM.Multiply(pV, product);
}
inline cMatrix33d operator/(const cMatrix33d& pM, double pScalar) {
  cMatrix33d quotient;
  return pM.Divide(pScalar, quotient);
}

}  // namespace TmEngine
