#include "engine/kernels/Kernels.h"

#include "engine/kernels/InstructionSets.h"

namespace TmEngine {

const sKernels* KernelsOf(int pLanes) {
  switch (pLanes) {
    case 1:
      return &Lanes1();
    case 4:
      return &Lanes4();
#if defined(__x86_64__)
    case 8:
      return __builtin_cpu_supports("avx2") ? &Lanes8() : nullptr;
    case 16:
      return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                     __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl")
                 ? &Lanes16()
                 : nullptr;
#endif
    default:
      return nullptr;
  }
}

}  // namespace TmEngine
