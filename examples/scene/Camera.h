#pragma once

#include "examples/scene/Shape.h"

/// From a place in the picture to a ray into the room.

namespace Scene {

enum class eView { Room, Panorama };

class cCamera {
 public:
  cCamera(eView pView, int pWidth, int pHeight);

  /// The ray through the point pX, pY in pixels from the upper left corner. In the panorama (equirectangular)
  /// column pWidth is column 0 again.
  sRay RayThrough(float pX, float pY) const;

  /// Share of light that the lens loses towards the picture's corners, as a factor up to 1.
  float Vignette(float pX, float pY) const;

 private:
  sRay PanoramaRay(float pX, float pY) const;

  eView fView;
  float fWidth;
  float fHeight;
};

}  // namespace Scene
