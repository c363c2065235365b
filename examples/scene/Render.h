#pragma once

#include <cstdint>
#include <vector>

#include "examples/scene/Camera.h"

namespace Scene {

struct sSceneOptions {
  eView fView = eView::Room;
  int fWidth = 1200;
  int fHeight = 800;
  std::uint32_t fSeed = 1;  ///< another seed, another grain
};

/// Linear light with sRGB primaries: three floats per pixel (red, green, blue), rows from the top, no
/// padding.
struct sHdrPicture {
  int fWidth = 0;
  int fHeight = 0;
  std::vector<float> fPixels;
};

/// Renders the scene; the same options give the same picture on any number of threads. Every sample is finite
/// and above 0. Throws std::invalid_argument for sizes outside 1 to 32768 and std::bad_alloc.
sHdrPicture RenderScene(const sSceneOptions& pOptions);

}  // namespace Scene
