#include "engine/math/Elementary.h"

#include <cmath>
#include <cstdint>
#include <limits>

#include "engine/math/ElementaryTables.h"

#define TM_LANES 1

namespace TmEngine {
namespace {

#include "engine/math/Doubles.inc"
#include "engine/math/Log10.inc"
#include "engine/math/Power.inc"

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// The NaN that the processor computes for 0 / 0: its sign shows when it is printed. x: finite.
double NotANumber(double x) {
  return (x - x) / (x - x);
}

double PowerOfTwo(int pExponent) {
  return DoublesOf(static_cast<tWords>(pExponent + 1023) << 52);
}

/// The sum of pResult times its power of two, which may overflow or be denormal.
double Assemble(const sScaled& pResult) {
  const int exponent = static_cast<int>(static_cast<std::int64_t>(pResult.fExponent) >> 52);
  const double sum = pResult.fHigh + pResult.fLow;
  if (exponent > -1022 || (exponent == -1022 && sum >= 1.0)) {
    const int half = exponent / 2;
    return sum * PowerOfTwo(half) * PowerOfTwo(exponent - half);
  }
  // Adding this number rounds the sum once, at the last place that denormals have.
  const double align = PowerOfTwo(-1022 - exponent);
  const double high = align + pResult.fHigh;
  const double rounded = high + ((pResult.fHigh - (high - align)) + pResult.fLow);
  return (rounded - align) * PowerOfTwo(exponent + 1000) * 0x1p-1000;
}

/// For finite x above 0 and finite y.
double PowOfPositive(double x, double y) {
  constexpr int kShift = 54;  // makes denormals normal
  const tExact log =
      x < kSmallestNormal ? LogOf(x * PowerOfTwo(kShift), kPlainBias + kShift) : LogOf(x, kPlainBias);
  const double estimate = log.fFirst * y;
  if (estimate > 710.0) return kInfinity;
  if (estimate < -746.0) return 0.0;
  const tExact exponent = Times(log, y);
  if (std::fabs(estimate) < kPlainExponent) return PlainExp(exponent);
  return Assemble(ExpOf(exponent));
}

/// For finite x below 0 and finite y.
double PowOfNegative(double x, double y) {
  if (std::trunc(y) != y) return NotANumber(x);
  const double power = PowOfPositive(-x, y);
  return std::fmod(y, 2.0) == 0.0 ? power : -power;
}

/// The Taylor series of the sine over its argument, 1 - x / (2 * 3) + x^2 / (2 * 3 * 4 * 5) - ..., up to the
/// factor pLast; if that is even, of the cosine, 1 - x / (1 * 2) + ... x is the argument squared.
double AlternatingSeries(double x, int pLast) {
  double sum = 1.0;
  for (int n = pLast; n > 1; n -= 2) sum = 1.0 - x / (n * (n - 1)) * sum;
  return sum;
}

constexpr double kHalfPiHigh = 0x1.921fb54442d18p+0, kHalfPiLow = 0x1.1a62633145c07p-54;

/// For x from 0 to pi / 2.
double CosOfQuarter(double x) {
  if (x < kHalfPiHigh / 2.0) return AlternatingSeries(x * x, 16);
  const double fromZero = (kHalfPiHigh - x) + kHalfPiLow;
  return fromZero * AlternatingSeries(fromZero * fromZero, 17);
}

}  // namespace

float Log10(float pX) {
  if (pX < 0.0f) return static_cast<float>(NotANumber(static_cast<double>(pX)));
  if (pX == 0.0f) return -std::numeric_limits<float>::infinity();
  return Narrow(Log10OfFloats(Widen(pX)));
}

double Pow(double pX, double pY) {
  const bool finite = std::fabs(pX) < kInfinity && std::fabs(pY) < kInfinity;
  if (!finite || pX == 0.0) return std::pow(pX, pY);  // exact
  return pX > 0.0 ? PowOfPositive(pX, pY) : PowOfNegative(pX, pY);
}

double Cos(double pX) {
  double x = std::fabs(pX);
  if (x > 2.0 * kHalfPiHigh) x = std::remainder(x, 4.0 * kHalfPiHigh);
  if (x < 0.0) x = -x;
  return x > kHalfPiHigh ? -CosOfQuarter(2.0 * kHalfPiHigh - x) : CosOfQuarter(x);
}

}  // namespace TmEngine
