#include "engine/math/cMatrix33.h"

namespace TmEngine {
namespace {

// The formulas of both precisions. Their order of operations is fixed: any other grouping rounds differently.

template <class tMatrix>
tMatrix Product(const tMatrix& pA, const tMatrix& pB) {
  tMatrix product;
  for (int r = 0; r < 9; r += 3) {
    for (int c = 0; c < 3; ++c) {
      product[r + c] = pA[r] * pB[c] + pA[r + 1] * pB[3 + c] + pA[r + 2] * pB[6 + c];
    }
  }
  return product;
}

template <class tMatrix, class tVector>
tVector Apply(const tMatrix& pM, const tVector& pV) {
  tVector result;
  for (int r = 0; r < 3; ++r) {
    result[r] = pM[3 * r] * pV[0] + pM[3 * r + 1] * pV[1] + pM[3 * r + 2] * pV[2];
  }
  return result;
}

// A division: multiplying by the reciprocal gives other bits.
template <class tMatrix, class tScalar>
tMatrix Quotient(const tMatrix& pM, tScalar pScalar) {
  tMatrix quotient;
  for (int i = 0; i < 9; ++i) quotient[i] = pM[i] / pScalar;
  return quotient;
}

template <class tMatrix>
auto DeterminantOf(const tMatrix& pM) {
  return (pM[4] * pM[8] - pM[5] * pM[7]) * pM[0] - (pM[3] * pM[8] - pM[6] * pM[5]) * pM[1] +
         (pM[3] * pM[7] - pM[6] * pM[4]) * pM[2];
}

template <class tMatrix>
tMatrix AdjugateOf(const tMatrix& pM) {
  return tMatrix(pM[4] * pM[8] - pM[5] * pM[7], -(pM[1] * pM[8] - pM[2] * pM[7]),
                 pM[1] * pM[5] - pM[2] * pM[4],  //
                 -(pM[3] * pM[8] - pM[6] * pM[5]), pM[0] * pM[8] - pM[6] * pM[2],
                 -(pM[0] * pM[5] - pM[3] * pM[2]),  //
                 pM[3] * pM[7] - pM[6] * pM[4], -(pM[0] * pM[7] - pM[6] * pM[1]),
                 pM[0] * pM[4] - pM[3] * pM[1]);
}

template <class tMatrix>
bool Invert(const tMatrix& pM, tMatrix& pTo) {
  const auto determinant = DeterminantOf(pM);
  if (determinant == 0) return false;
  pTo = Quotient(AdjugateOf(pM), determinant);
  return true;
}

}  // namespace

float cMatrix33::Determinant() const {
  return DeterminantOf(*this);
}

cMatrix33& cMatrix33::Adjugate(cMatrix33& pTo) const {
  return pTo = AdjugateOf(*this);
}

bool cMatrix33::Inverse(cMatrix33& pTo) const {
  return Invert(*this, pTo);
}

cMatrix33& cMatrix33::Multiply(const cMatrix33& pB, cMatrix33& pTo) const {
  return pTo = Product(*this, pB);
}

cVector3& cMatrix33::Multiply(const cVector3& pV, cVector3& pTo) const {
  return pTo = Apply(*this, pV);
}

cMatrix33& cMatrix33::Divide(float pScalar, cMatrix33& pTo) const {
  return pTo = Quotient(*this, pScalar);
}

double cMatrix33d::Determinant() const {
  return DeterminantOf(*this);
}

cMatrix33d& cMatrix33d::Adjugate(cMatrix33d& pTo) const {
  return pTo = AdjugateOf(*this);
}

bool cMatrix33d::Inverse(cMatrix33d& pTo) const {
  return Invert(*this, pTo);
}

cMatrix33 cMatrix33d::ToFloat() const {
  cMatrix33 rounded;
  for (int i = 0; i < 9; ++i) rounded[i] = static_cast<float>(fM[i]);
  return rounded;
}

cMatrix33d& cMatrix33d::Multiply(const cMatrix33d& pB, cMatrix33d& pTo) const {
  return pTo = Product(*this, pB);
}

cVector3d& cMatrix33d::Multiply(const cVector3d& pV, cVector3d& pTo) const {
  return pTo = Apply(*this, pV);
}

cMatrix33d& cMatrix33d::Divide(double pScalar, cMatrix33d& pTo) const {
  return pTo = Quotient(*this, pScalar);
}

}  // namespace TmEngine
