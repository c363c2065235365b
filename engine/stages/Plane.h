#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace TmEngine {

struct sFreeBlock {
  void operator()(void* pBlock) const { std::free(pBlock); }
};

/// One float a pixel, row-major without padding, from malloc, not cleared.
using tPlane = std::unique_ptr<float[], sFreeBlock>;

/// Throws cOutOfMemoryException when the block cannot be had.
tPlane AllocPlane(int pWidth, int pHeight);

/// Index of the first pixel of row pY of a plane.
inline std::ptrdiff_t RowStart(int pY, int pWidth) {
  return static_cast<std::ptrdiff_t>(pY) * pWidth;
}

}  // namespace TmEngine
