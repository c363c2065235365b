#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace TmEngine {

class cLargeRegion;

struct sFreeBlock {
  void operator()(void* pBlock) const { std::free(pBlock); }
};

/// Frees a block, unless it is part of a region.
struct sFreePlane {
  bool fIsOwn = true;
  void operator()(void* pBlock) const {
    if (fIsOwn) std::free(pBlock);
  }
};

/// One float per pixel, row-major without padding, not cleared.
using tPlane = std::unique_ptr<float[], sFreePlane>;

/// A plane in pRegion, which must outlive it, where that has room, else from malloc; null without memory.
tPlane AllocPlane(int pWidth, int pHeight, cLargeRegion* pRegion = nullptr);

/// Index of the first pixel of row pY of a plane.
inline std::ptrdiff_t RowStart(int pY, int pWidth) {
  return static_cast<std::ptrdiff_t>(pY) * pWidth;
}

}  // namespace TmEngine
