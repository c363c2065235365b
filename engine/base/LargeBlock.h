#pragma once

#include <cstddef>

namespace TmEngine {

/// A block from malloc, given back with free; null when it cannot be had. Not cleared. Large blocks ask the
/// system for large pages where it has them, as most of the cost of fresh memory is paid a page: only speed
/// depends on it.
void* AllocLargeBlock(std::size_t pBytes);

}  // namespace TmEngine
