#pragma once

#include "examples/scene/Noise.h"
#include "examples/scene/Probes.h"
#include "examples/scene/Shape.h"

/// How light gets from the sun, the windows and the lamp to a surface, directly or off other surfaces.

namespace Scene {

class cLight {
 public:
  /// pShapes must outlive the object.
  explicit cLight(const cShapeTree& pShapes) : fShapes(pShapes), fProbes(pShapes) {}

  /// Irradiance of the sun; sharp-edged.
  sVec3 Sun(const sHit& pHit, sVec3 pNormal, cSampler& pSampler) const;

  /// Irradiance of everything else; soft, and noisy unless many samples are averaged.
  sVec3 Soft(const sHit& pHit, sVec3 pNormal, cSampler& pSampler) const;

  /// As Soft, but roughly and free of noise: for what is only seen in a reflection.
  sVec3 Rough(const sHit& pHit) const;

 private:
  sVec3 Direct(const sHit& pHit, sVec3 pNormal, cSampler& pSampler) const;
  float Openness(const sHit& pHit, sVec3 pNormal, cSampler& pSampler) const;

  const cShapeTree& fShapes;
  const cProbes fProbes;
};

}  // namespace Scene
