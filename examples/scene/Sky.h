#pragma once

#include "examples/scene/Vec3.h"

/// What lies outside the room: sky, sun, clouds, hills and trees, all so far away that only the direction
/// counts. Radiance 1.0 is about a white wall indoors; the open sky is about ten times that.

namespace Scene {

/// Unit vector towards the sun, and what it adds to the irradiance of a surface that faces it.
inline constexpr sVec3 kToSun = {-0.6200f, 0.5850f, -0.5229f};
inline constexpr sVec3 kSunIrradiance = {190.0f, 168.0f, 132.0f};

/// Mean radiance of what a window shows, as a light for the room.
inline constexpr sVec3 kWindowRadiance = {8.5f, 9.6f, 11.0f};

/// Radiance from the unit direction pDirection; continuous all around. The sun's disc is left out of
/// reflections (pWithSun false), where few samples would turn it into speckles.
sVec3 Outside(sVec3 pDirection, bool pWithSun);

}  // namespace Scene
