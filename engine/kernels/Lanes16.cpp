#include "engine/kernels/InstructionSets.h"
#include "engine/kernels/Kernels.h"
#include "engine/math/Elementary.h"
#include "engine/math/ElementaryTables.h"

#if defined(__x86_64__)

#include <immintrin.h>

#define TM_LANES 16

// Opened after all headers: what they define must not be compiled for a processor that may be missing.
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx512f,avx512bw,avx512dq,avx512vl"))), \
                             apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx512f,avx512bw,avx512dq,avx512vl")
#endif

namespace TmEngine {
namespace {
#include "engine/kernels/Kernels.inc"
}  // namespace
}  // namespace TmEngine

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

const TmEngine::sKernels& TmEngine::Lanes16() {
  return kKernels;
}

#endif
