#pragma once

#include <benchmark/benchmark.h>

#include "bench/Usage.h"

/// The benchmarks of quorvane-bench-kernels, a file each. Register... checks results first and throws
/// std::runtime_error when they are wrong: the time of a wrong result says nothing.
namespace Bench {

/// Copying and first touch of memory: what bounds the rest.
void RegisterMachine();
/// Each kernel of each set that this processor runs, on runs of pixels that stay in the nearest cache.
void RegisterKernels();
/// The renderers' stages on a whole picture.
void RegisterStages();
/// Each operation on images beside a copy of as many bytes.
void RegisterUtilities();

/// Pictures of stages and operations.
inline constexpr int kWidth = 2448;
inline constexpr int kHeight = 1632;
inline constexpr double kPixels = static_cast<double>(kWidth) * kHeight;

/// Seconds of processor time that pDo takes.
template <class tDo>
double Seconds(const tDo& pDo) {
  const double start = ProcessorTime().fTotal;
  pDo();
  return ProcessorTime().fTotal - start;
}

/// What a benchmark of manual time reports: seconds per pixel, and bytes (read and written, per pixel) per
/// second.
inline void ReportPixels(benchmark::State& pState, double pPixels, double pBytes) {
  using tCounter = benchmark::Counter;
  pState.counters["per_pixel"] = tCounter(
      pPixels, static_cast<tCounter::Flags>(tCounter::kIsIterationInvariantRate | tCounter::kInvert));
  pState.SetBytesProcessed(static_cast<std::int64_t>(pBytes * pPixels) *
                           static_cast<std::int64_t>(pState.iterations()));
}

}  // namespace Bench
