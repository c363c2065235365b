#pragma once

namespace TmEngine {

// Elementary functions made of IEEE additions, multiplications and integer operations alone: the same bits on
// every processor and with every compiler, which the C library's are not. engine/kernels has them for rows.

/// The decimal logarithm, correctly rounded, denormals included; special values as std::log10 has them.
float Log10(float pX);

/// pX to the power pY, off by at most 0.51 units in the last place; special values as std::pow has them.
double Pow(double pX, double pY);

/// The cosine, off by less than two units in the last place for |pX| <= pi / 2. The turns beyond are those of
/// the double next to 2 pi.
double Cos(double pX);

}  // namespace TmEngine
