#pragma once

namespace TmEngine {

struct sKernels;

/// One set each. Lanes8 (AVX2) and Lanes16 (AVX-512) exist on x86-64 only and must not be called where the
/// processor lacks them.
const sKernels& Lanes1();
const sKernels& Lanes4();
const sKernels& Lanes8();
const sKernels& Lanes16();

}  // namespace TmEngine
