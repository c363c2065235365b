#include "engine/base/Plane.h"

#include "engine/base/LargeBlock.h"
#include "engine/base/cLargeRegion.h"

namespace TmEngine {

tPlane AllocPlane(int pWidth, int pHeight, cLargeRegion* pRegion) {
  const std::size_t count = static_cast<std::size_t>(pWidth) * static_cast<std::size_t>(pHeight);
  void* const shared = pRegion != nullptr ? pRegion->Take(count * sizeof(float)) : nullptr;
  if (shared != nullptr) return tPlane(static_cast<float*>(shared), sFreePlane{false});
  return tPlane(static_cast<float*>(AllocLargeBlock(count * sizeof(float))));
}

}  // namespace TmEngine
