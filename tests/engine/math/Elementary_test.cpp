#include "engine/math/Elementary.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include "engine/kernels/Kernels.h"
#include "tests/Numbers.h"

namespace TmEngine {
namespace {

std::vector<const sKernels*> Sets() {
  std::vector<const sKernels*> sets;
  for (const int lanes : {1, 4, 8, 16})
    if (const sKernels* set = KernelsOf(lanes)) sets.push_back(set);
  return sets;
}

/// log10 rounded once. Doubles that lie close to the middle between two floats are looked at more closely.
float RoundedLog10(float pX) {
  const double log10 = std::log10(double{pX});
  const std::uint64_t tail = std::bit_cast<std::uint64_t>(log10) & 0x1fffffff;
  if (tail - 0xffffff0 > 0x20) return static_cast<float>(log10);
  return static_cast<float>(std::log10(static_cast<long double>(pX)));
}

// Every float takes a minute or more: QUORVANE_EVERY_FLOAT=1.
TEST(Log10, IsCorrectlyRoundedInEverySet) {
  constexpr std::uint32_t kInfinityBits = 0x7f800000;
  constexpr std::size_t kRun = 4099;
  const std::uint32_t step = std::getenv("QUORVANE_EVERY_FLOAT") != nullptr ? 1 : 97;
  std::vector<float> from, expected(kRun), to(kRun);
  for (std::uint32_t bits = 1; bits < kInfinityBits;) {
    from.clear();
    for (; from.size() < kRun && bits < kInfinityBits; bits += step)
      from.push_back(std::bit_cast<float>(bits));
    std::transform(from.begin(), from.end(), expected.begin(), RoundedLog10);
    for (const sKernels* set : Sets()) {
      set->fLog10Row(from.data(), to.data(), static_cast<int>(from.size()));
      ASSERT_TRUE(std::equal(to.begin(), to.begin() + std::ssize(from), expected.begin()))
          << set->fLanes << " lanes, near " << from.front();
    }
    ASSERT_EQ(Log10(from.front()), expected.front());
  }
}

TEST(Log10, LeavesWhatHasNoLogarithm) {
  EXPECT_EQ(Log10(0.0f), -kInfinity);
  EXPECT_TRUE(std::isnan(Log10(-1e30f)) && std::isnan(Log10(kNaN)));
  for (const sKernels* set : Sets()) {
    std::vector<float> row(37, kNaN);
    row[3] = row[35] = kInfinity;
    row[7] = row[36] = 1000.0f;
    set->fLog10Row(row.data(), row.data(), 37);
    EXPECT_TRUE(std::isnan(row[0]) && std::isnan(row[34]));
    EXPECT_TRUE(row[3] == kInfinity && row[35] == kInfinity && row[7] == 3.0f && row[36] == 3.0f);
  }
}

/// Compares one formula over a table of 65,536 entries, pPow being one implementation of the power or
/// another.
void ExpectSameFloats(
    const char* pName,
    const std::function<double(double pPosition, double (*pPow)(double, double))>& pFormula) {
  int different = 0;
  for (int i = 0; i < 65536; ++i) {
    const double position = i / 65535.0;
    const auto ours = static_cast<float>(pFormula(position, Pow));
    const auto theirs =
        static_cast<float>(pFormula(position, [](double x, double y) { return std::pow(x, y); }));
    if (ours != theirs) ++different;
  }
  EXPECT_EQ(different, 0) << pName;
}

TEST(Pow, GivesTheFloatsOfTheCLibraryInTheTablesOfTheEngine) {
  for (const double gamma :
       {1.8, 2.2, 563.0 / 256.0, double{2.2f}, 1.0 / 1.8, 1.0 / 2.2, 1.0 / 3.0, 2.0, 0.5}) {
    ExpectSameFloats("gamma", [=](double t, auto pow) { return pow(t, gamma); });
    ExpectSameFloats("gamma, codes", [=](double t, auto pow) { return pow(t * 65535.0 / 65536.0, gamma); });
  }
  ExpectSameFloats("from sRGB", [](double t, auto pow) { return pow((t + 0.055) / 1.055, 2.4); });
  ExpectSameFloats("to sRGB", [](double t, auto pow) { return pow(t, 0.4166666666666667) * 1.055 - 0.055; });
  for (const double range : {0.01, 0.3, 1.0, 2.5, 6.0, 20.0, 38.0, 45.0}) {
    ExpectSameFloats("tones", [=](double t, auto pow) { return pow(10.0, t * range * 1.5 - range); });
    ExpectSameFloats("compressed tones", [=](double t, auto pow) {
      const double value = t * range - 0.41 * range;
      return pow(10.0, value * pow(std::fabs(value / (0.2 * range)), -0.3));
    });
  }
}

TEST(Pow, TreatsSpecialNumbersAsTheCLibraryDoes) {
  std::vector<double> numbers = {double{kNaN}, double{kInfinity}, -double{kInfinity}, 0x1p51 + 0.5,
                                 std::nextafter(1.0, 0.0)};
  for (const double number : {0.0,   0.5,   1.0,  2.0,   2.5,    3.0,    10.0,   1022., 1023.,  1024.,
                              1074., 1075., 1e17, 1e308, 5e-324, 1e-310, 1e-300, 1e-17, 0x1p53, 0x1p-1022}) {
    numbers.insert(numbers.end(), {number, -number});
  }
  for (const double x : numbers) {
    for (const double y : numbers) {
      const double power = Pow(x, y), expected = std::pow(x, y);
      if (std::isnan(expected)) {
        EXPECT_TRUE(std::isnan(power)) << x << " " << y;
      } else {
        EXPECT_DOUBLE_EQ(power, expected) << x << " " << y;
        EXPECT_EQ(std::signbit(power), std::signbit(expected)) << x << " " << y;
      }
    }
  }
}

TEST(Pow, IsExactWhereTheResultIs) {
  double ten = 1.0;
  for (int n = 0; n <= 22; ++n, ten *= 10.0) EXPECT_EQ(Pow(10.0, n), ten);
  for (int n = -1074; n <= 1023; ++n) ASSERT_EQ(Pow(2.0, n), std::ldexp(1.0, n));
  for (const double x : {0.1, 1e-320, 3e-308, 12345.678, 1.7e308}) {
    EXPECT_EQ(Pow(x, 1.0), x);
    EXPECT_EQ(Pow(1.0, x), 1.0);
    EXPECT_EQ(Pow(x, 0.0), 1.0);
  }
  EXPECT_EQ(Pow(7.0, 3.0), 343.0);
  EXPECT_EQ(Pow(-3.0, 33.0), -5559060566555523.0);
}

TEST(Pow, IsTheSameInRowsOfEverySet) {
  std::vector<double> x, y;
  for (int i = 0; i < 1000; ++i) {
    x.push_back(0.002 * i);
    y.push_back(0.02 * i - 9.0);
  }
  x[5] = -3.0;
  x[77] = y[0] = kInfinity;
  x[500] = y[300] = double{kNaN};
  x[997] = 5e-324;
  y[200] = 400.0;
  y[450] = -310.0;
  y[999] = -1e300;
  std::vector<double> to(1001, 77.0);
  const auto bits = [](double pValue) {
    return std::isnan(pValue) ? 0 : std::bit_cast<std::uint64_t>(pValue);
  };
  for (const sKernels* set : Sets()) {
    for (const std::size_t count : {0u, 1u, 3u, 8u, 17u, 1000u}) {
      const auto elements = static_cast<int>(count);
      std::copy(x.begin(), x.end(), to.begin());
      set->fPowRow(to.data(), 1.0 / 2.4, to.data(), elements);
      for (std::size_t i = 0; i < count; ++i)
        ASSERT_EQ(bits(to[i]), bits(Pow(x[i], 1.0 / 2.4))) << set->fLanes << " " << i;
      for (const double base : {10.0, 0.0, 3e-310}) {
        to[count] = 77.0;
        set->fBasePowRow(base, y.data(), to.data(), elements);
        for (std::size_t i = 0; i < count; ++i)
          ASSERT_EQ(bits(to[i]), bits(Pow(base, y[i]))) << set->fLanes << " " << i;
        ASSERT_EQ(to[count], 77.0);
      }
    }
  }
}

TEST(Cos, IsWithinTwoUnitsInTheLastPlace) {
  constexpr double kHalfPi = 0x1.921fb54442d18p+0;
  for (int i = -5000; i <= 5000; ++i) {
    const double x = kHalfPi * (i / 5000.0), expected = std::cos(x);
    ASSERT_NEAR(Cos(x), expected, 2.0 * std::numeric_limits<double>::epsilon() * expected) << x;
  }
  for (const double x : {1.6, -3.1, 3.2, 4.7, -6.2, 11.0}) EXPECT_NEAR(Cos(x), std::cos(x), 1e-15) << x;
  EXPECT_TRUE(std::isnan(Cos(double{kInfinity})));
  EXPECT_EQ(Cos(0.0), 1.0);
  EXPECT_EQ(Cos(kHalfPi), 0x1.1a62633145c07p-54);
}

}  // namespace
}  // namespace TmEngine
