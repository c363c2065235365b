#pragma once

#include <vector>

#include "examples/scene/Noise.h"
#include "examples/scene/Shape.h"

/// The light that is on its way in the room, measured at the points of a grid: what surfaces get from each
/// other.

namespace Scene {

class cProbes {
 public:
  /// Measures the room. pShapes is needed for that only.
  explicit cProbes(const cShapeTree& pShapes);

  /// Irradiance at pPosition of a surface with pNormal from other surfaces (pAll false), or from those and
  /// from the windows and the lamp, without sharp shadows (pAll true). The sun's own light is never part of
  /// it.
  sVec3 Irradiance(sVec3 pPosition, sVec3 pNormal, bool pAll) const;

 private:
  /// Irradiance of surfaces that face +x -x +y -y +z -z.
  struct sSides {
    sVec3 fFacing[6];

    void Add(sVec3 pTowards, sVec3 pLight);
  };

  struct sProbe {
    sSides fReflected;
    sSides fAll;
  };

  /// A spot that the sun shines on, as a small lamp.
  struct sSunSpot {
    sVec3 fPosition;
    sVec3 fNormal;
    sVec3 fIntensity;  ///< straight ahead
  };

  void FindSunSpots(const cShapeTree& pShapes);
  void AddSunSpots(const cShapeTree& pShapes, sVec3 pPosition, sSides& pTo) const;
  sProbe Measure(const cShapeTree& pShapes, sVec3 pPosition, std::uint32_t pId) const;
  void MeasureAll(const cShapeTree& pShapes);

  std::vector<sSunSpot> fSunSpots;
  std::vector<sProbe> fProbes;
};

/// A direction of any side, all equally likely.
sVec3 AnyDirection(cSampler& pSampler);

}  // namespace Scene
