#include "engine/math/cMatrix33.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace TmEngine {
namespace {

template <class tMatrix>
class cMatrix33Both : public testing::Test {};
using tPrecisions = testing::Types<cMatrix33, cMatrix33d>;
TYPED_TEST_SUITE(cMatrix33Both, tPrecisions);

template <class tMatrix>
void ExpectSame(const tMatrix& pActual, const tMatrix& pExpected) {
  for (int i = 0; i < 9; ++i) EXPECT_EQ(pActual[i], pExpected[i]) << "element " << i;
}

// Worked by hand; small whole numbers are exact in both precisions.
TYPED_TEST(cMatrix33Both, CalculatesWithWholeNumbers) {
  const TypeParam a(2, 0, 1, 3, -1, 4, 5, 6, 7);
  const TypeParam b(1, 2, 3, 4, 5, 6, 7, 8, 10);
  ExpectSame(a * b, TypeParam(9, 12, 16, 27, 33, 43, 78, 96, 121));
  ExpectSame(b * a, TypeParam(23, 16, 30, 53, 31, 66, 88, 52, 109));
  EXPECT_EQ(a.Determinant(), -39);
  TypeParam adjugate;
  EXPECT_EQ(&a.Adjugate(adjugate), &adjugate);
  ExpectSame(adjugate, TypeParam(-31, 6, 1, -1, 9, -5, 23, -12, -2));
  TypeParam inverse;
  EXPECT_TRUE(a.Inverse(inverse));
  ExpectSame(inverse, adjugate / -39);
  TypeParam inPlace = a;
  EXPECT_TRUE(inPlace.Inverse(inPlace));
  ExpectSame(inPlace, inverse);
  inPlace = a;
  ExpectSame(inPlace.Adjugate(inPlace), adjugate);
}

TYPED_TEST(cMatrix33Both, WritesToADestinationThatMayBeAnOperand) {
  const TypeParam a(2, 0, 1, 3, -1, 4, 5, 6, 7), b(1, 2, 3, 4, 5, 6, 7, 8, 10);
  TypeParam left = a, right = b, both = a, halves, copy;
  EXPECT_EQ(&left.Multiply(b, left), &left);
  ExpectSame(left, a * b);
  EXPECT_EQ(&a.Multiply(right, right), &right);
  ExpectSame(right, left);
  ExpectSame(both.Multiply(both, both), a * a);
  EXPECT_EQ(&a.Divide(2, halves), &halves);
  EXPECT_EQ(halves[7], 3);
  ExpectSame(halves.Divide(2, halves), a / 4);
  EXPECT_EQ(&a.Copy(copy), &copy);
  ExpectSame(copy, a);
  auto vector = [] {
    if constexpr (std::is_same_v<TypeParam, cMatrix33>) {
      return cVector3(1, -2, 3);
    } else {
      return cVector3d(1, -2, 3);
    }
  }();
  auto sameVector = vector;
  EXPECT_EQ(&vector.Copy(sameVector), &sameVector);
  EXPECT_EQ(&a.Multiply(sameVector, sameVector), &sameVector);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(sameVector[i], (a * vector)[i]);
  EXPECT_EQ(sameVector[1], 17);
}

TYPED_TEST(cMatrix33Both, InvertsAllButTheExactlySingular) {
  const TypeParam identity(1, 0, 0, 0, 1, 0, 0, 0, 1);
  TypeParam result;
  EXPECT_TRUE(identity.Inverse(result));
  ExpectSame(result, identity);
  EXPECT_TRUE(TypeParam(4, 0, 0, 0, 0.5, 0, 0, 0, -8).Inverse(result));
  ExpectSame(result, TypeParam(0.25, 0, 0, 0, 2, 0, 0, 0, -0.125));

  const TypeParam before = result;
  EXPECT_FALSE(TypeParam(1, 2, 3, 1, 2, 3, 4, 5, 6).Inverse(result));
  ExpectSame(result, before);
  EXPECT_TRUE(TypeParam(1, 0, 0, 0, 1, 0, 0, 0, 1e-30f).Inverse(result));
  EXPECT_GT(result[8], 9e29f);
}

// Fused or regrouped arithmetic, or a product with a reciprocal, gives other numbers.
TEST(cMatrix33, RoundsEveryOperationInOrder) {
  const cMatrix33 rows(1, 10, 100, 2, 20, 200, 3, 30, 300);
  for (int i = 0; i < 3; ++i) EXPECT_EQ((rows * cVector3(5, 7, 9))[i], static_cast<float>(975 * (i + 1)));
  const float small = 0x1p-24f;
  const cMatrix33 cancelling(1 + 0x1p-12f, -1, 0, small, small, 1, 1, small, small);
  const cMatrix33 factor(1 + 0x1p-12f, 0, 1, 1 + 0x1p-11f, 0, small, 0, 0, small);
  EXPECT_EQ((cancelling * factor)[0], 0.0f);  // a fused multiply-add keeps 2^-24
  EXPECT_EQ((cMatrix33(1, small, small, 0, 0, 0, 0, 0, 0) * cVector3(1, 1, 1))[0], 1.0f);
  EXPECT_EQ((cMatrix33(small, small, 1, 0, 0, 0, 0, 0, 0) * cVector3(1, 1, 1))[0], 1 + 0x1p-23f);
  EXPECT_EQ((cMatrix33(5, 0, 0, 0, 0, 0, 0, 0, 0) / 49.0f)[0], 5.0f / 49.0f);
  EXPECT_EQ(cMatrix33d(0.1, 0, 0, 0, 0, 0, 0, 0, 1 + 0x1p-24).ToFloat()[0], 0.1f);
  EXPECT_EQ(cMatrix33d(0, 0, 0, 0, 0, 0, 0, 0, 1 + 0x1.8p-24).ToFloat()[8], 1 + 0x1p-23f);
}

}  // namespace
}  // namespace TmEngine
