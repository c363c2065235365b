#pragma once

namespace TmEngine {

/// Row bodies of the per-pixel stages, compiled once per instruction set from one source (Kernels.inc). All
/// sets give the same bits: every operation rounds as IEEE 754 says, and none is fused.
///
/// Counts may be any number from 0 up; a kernel reads and writes exactly that many elements. Pointers need
/// the alignment of their element only.
struct sKernels {
  int fLanes;  ///< Floats worked on at once: 1, 4, 8 or 16.

  /// Log10, Pow(x, pY) and Pow(pX, y) of every element, as engine/Elementary.h has them; no float may be 0 or
  /// negative. pTo may be the other array.
  void (*fLog10Row)(const float* pX, float* pTo, int pCount);
  void (*fPowRow)(const double* pX, double pY, double* pTo, int pCount);
  void (*fBasePowRow)(double pX, const double* pY, double* pTo, int pCount);
};

/// The widest set that this processor and operating system run.
const sKernels& Kernels();

/// The set of pLanes lanes; null when this processor cannot run it or the build has none.
const sKernels* KernelsOf(int pLanes);

}  // namespace TmEngine
