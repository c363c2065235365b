#pragma once

#include "examples/scene/Shape.h"

/// What the shapes are made of.

namespace Scene {

/// The first kFirstSolid materials cast no shadows.
enum eMaterial : int {
  Glass,
  Bulb,
  LampShade,
  Matt,
  Glazed,
  Polished,
  Fabric,
  Fruit,
  Leaf,
  Wood,
  FloorBoards,
  Ceiling,
  Wallpaper,
  Brick,
  Plaster,
  Book,
  Rug,
  Painting
};
inline constexpr int kFirstSolid = LampShade;

/// A surface at one point.
struct sSurface {
  sVec3 fAlbedo;
  sVec3 fNormal;
  sVec3 fEmission;                   ///< radiance of its own
  float fMirror = 0.0f;              ///< share of light that it reflects head-on
  float fRoughness = 0.0f;           ///< spread of reflections
  sVec3 fTint = {1.0f, 1.0f, 1.0f};  ///< colour of reflections
};

sSurface SurfaceAt(const sHit& pHit);

}  // namespace Scene
