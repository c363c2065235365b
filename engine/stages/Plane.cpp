#include "engine/stages/Plane.h"

#include "engine/LargeBlock.h"
#include "engine/TmCheck.h"
#include "engine/cLargeRegion.h"

namespace TmEngine {

static constexpr char kSourceFile[] = ".\\cTmRenderer.cpp";

tPlane AllocPlane(int pWidth, int pHeight, cLargeRegion* pRegion) {
  static constexpr char kSignature[] = "float *__cdecl TmEngine::AllocPlane(int,int)";
  const std::size_t count = static_cast<std::size_t>(pWidth) * static_cast<std::size_t>(pHeight);
  void* const shared = pRegion != nullptr ? pRegion->Take(count * sizeof(float)) : nullptr;
  if (shared != nullptr) return tPlane(static_cast<float*>(shared), sFreePlane{false});
  tPlane plane(static_cast<float*>(AllocLargeBlock(count * sizeof(float))));
  TM_CHECK(plane != nullptr, cOutOfMemoryException, "Cannot alloc bitmap array.");
  return plane;
}

}  // namespace TmEngine
