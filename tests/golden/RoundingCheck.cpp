// Whether the compiler, with the flags that the engine is built with, rounds to float wherever the source
// says so. Optimisers that put neighbouring values into one vector have been seen to lose that. Every form
// below is one that an optimiser may treat so; those for wider vectors run where the processor has them.
//
// A program without a test framework, so that it also runs where only a C++ compiler is.
#include <cstddef>
#include <cstdio>
#include <vector>

namespace {

/// Calls of every form handle this many values.
constexpr int kCount = 240;

constexpr double kFactor = 0.7845841;

/// Writes float(double(float(x)) * kFactor) of each value.
using tScale = void (*)(const double* pFrom, float* pTo, int pCount);

struct sForm {
  const char* fName;
  tScale fScale;
};

namespace Plain {
#include "tests/golden/RoundingForms.inc"
}  // namespace Plain

#if defined(__x86_64__)
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif
namespace Avx2 {
#include "tests/golden/RoundingForms.inc"
}  // namespace Avx2
#if defined(__clang__)
#pragma clang attribute pop
#pragma clang attribute push(__attribute__((target("avx512f,avx512bw,avx512dq,avx512vl"))), \
                             apply_to = function)
#else
#pragma GCC pop_options
#pragma GCC push_options
#pragma GCC target("avx512f,avx512bw,avx512dq,avx512vl")
#endif
namespace Avx512 {
#include "tests/golden/RoundingForms.inc"
}  // namespace Avx512
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
#endif

/// Memory that the compiler must write to and read back keeps no more than a float.
float RoundedInMemory(double pValue) {
  volatile float rounded = static_cast<float>(pValue);
  return rounded;
}

/// Numbers of which hardly any is a float.
std::vector<double> Values() {
  std::vector<double> values;
  for (int i = 1; i <= kCount; ++i) values.push_back(i / 7.0);
  return values;
}

/// How many forms lose a rounding; each is named.
template <std::size_t kForms>
int CountLosses(const char* pSet, const sForm (&pForms)[kForms]) {
  const std::vector<double> values = Values();
  int losses = 0;
  for (const sForm& form : pForms) {
    std::vector<float> scaled(values.size());
    form.fScale(values.data(), scaled.data(), kCount);
    int wrong = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
      const auto rounded = static_cast<double>(RoundedInMemory(values[i]));
      wrong += scaled[i] != RoundedInMemory(rounded * kFactor);
    }
    if (wrong == 0) continue;
    std::printf("%s, %s: a rounding is lost, %d of %d results are wrong\n", form.fName, pSet, wrong, kCount);
    ++losses;
  }
  return losses;
}

}  // namespace

int main() {
  int losses = CountLosses("any processor", Plain::kForms);
#if defined(__x86_64__)
  if (__builtin_cpu_supports("avx2")) losses += CountLosses("AVX2", Avx2::kForms);
  if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
      __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl")) {
    losses += CountLosses("AVX-512", Avx512::kForms);
  }
#endif
  if (losses == 0) return 0;
  std::printf(
      "%s with \"%s\" leaves out roundings to float: pictures would get other bytes than with other "
      "compilers.\n"
      "Add the flag that stops it to cmake/QuorvaneCompile.cmake (for GCC 12 that is "
      "-fno-tree-slp-vectorize).\n",
      QUORVANE_COMPILER, QUORVANE_FLAGS);
  return 1;
}
