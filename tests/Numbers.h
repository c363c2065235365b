#pragma once

#include <limits>

inline constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
inline constexpr float kInfinity = std::numeric_limits<float>::infinity();
