#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <vector>

/// Ends the program, which the fuzzer reports with its input, unless pHolds.
inline void Require(bool pHolds, const char* pWhat) {
  if (pHolds) return;
  std::fprintf(stderr, "Broken promise: %s\n", pWhat);
  std::abort();
}

/// Often a number that callers use, sometimes any float at all: NaN, infinite, denormal.
inline float TakeFloat(FuzzedDataProvider& pData, float pLow, float pHigh) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  switch (pData.ConsumeIntegralInRange(0, 9)) {
    case 0:
      return std::bit_cast<float>(pData.ConsumeIntegral<std::uint32_t>());
    case 1:
      return pData.PickValueInArray({0.0f, -0.0f, 1.0f, -1.0f, 0.5f, kInfinity, -kInfinity, 3e38f, -3e38f,
                                     1e-45f, std::numeric_limits<float>::quiet_NaN()});
    default:
      return pData.ConsumeFloatingPointInRange(pLow, pHigh);
  }
}

/// pCount bytes, zeros where the input ends; a block of exactly that size.
inline std::vector<unsigned char> TakeBytes(FuzzedDataProvider& pData, std::size_t pCount) {
  std::vector<unsigned char> bytes = pData.ConsumeBytes<unsigned char>(pCount);
  bytes.resize(pCount);
  return {bytes.begin(), bytes.end()};
}
