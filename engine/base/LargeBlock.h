#pragma once

#include <cstddef>

namespace TmEngine {

/// A block from malloc, released with free; null without memory. Not cleared. Large blocks ask the system for
/// large pages where it has them, as most of the cost of fresh memory is paid per page: only speed depends on
/// it.
void* AllocLargeBlock(std::size_t pBytes);

}  // namespace TmEngine
