// Kernels, stages and operations, checked and then timed with Google Benchmark, whose options it takes:
//
//   quorvane-bench-kernels --benchmark_filter=kernel/
//
// per_pixel is the time per pixel. Bytes a second count what is read and what is written; look-up tables are
// left out. Stages and operations are given in processor time.
#include "bench/Suites.h"

#include <cstdio>
#include <exception>

int main(int pCount, char** pArguments) {
  benchmark::Initialize(&pCount, pArguments);
  if (benchmark::ReportUnrecognizedArguments(pCount, pArguments)) return 2;
  try {
    Bench::RegisterMachine();
    Bench::RegisterKernels();
    Bench::RegisterStages();
    Bench::RegisterUtilities();
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "quorvane-bench-kernels: %s\n", failure.what());
    return 1;
  }
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
