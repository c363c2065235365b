#pragma once

namespace TmEngine {

/// Row bodies of the per-pixel stages, compiled once per instruction set from one source (Kernels.inc). All
/// sets give the same bits: every operation rounds as IEEE 754 says, and none is fused.
///
/// Counts may be any number from 0 up; a kernel reads and writes exactly that many elements. Pointers need
/// the alignment of their element only.
struct sKernels {
  int fLanes;  ///< Floats worked on at once: 1, 4, 8 or 16.
};

/// The widest set that this processor and operating system run.
const sKernels& Kernels();

/// The set of pLanes lanes; null when this processor cannot run it or the build has none.
const sKernels* KernelsOf(int pLanes);

}  // namespace TmEngine
