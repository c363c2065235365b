#pragma once

#include <vector>

#include "examples/scene/Shape.h"

/// The room and everything in it.

namespace Scene {

inline constexpr sVec3 kRoomLow = {-3.0f, 0.0f, 0.0f};
inline constexpr sVec3 kRoomHigh = {3.0f, 2.7f, 6.5f};

/// A rectangle that lets daylight in: pane corner, its two edges; edge 1 x edge 2 points into the room.
struct sWindow {
  sVec3 fCorner;
  sVec3 fEdge1;
  sVec3 fEdge2;
};

inline constexpr sWindow kWindows[] = {
    {{-2.40f, 0.75f, -0.20f}, {2.30f, 0.0f, 0.0f}, {0.0f, 1.60f, 0.0f}},
    {{-3.20f, 0.80f, 4.60f}, {0.0f, 0.0f, -1.60f}, {0.0f, 1.50f, 0.0f}},
};

inline constexpr sVec3 kBulb = {2.45f, 1.62f, 0.62f};
inline constexpr sVec3 kBulbIntensity = {6.0f, 3.6f, 1.55f};

std::vector<sShape> FurnishRoom();

}  // namespace Scene
