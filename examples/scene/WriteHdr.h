#pragma once

#include <string>

#include "examples/scene/Render.h"

namespace Scene {

/// Writes a Radiance picture (RGBE, run-length encoded). Throws std::runtime_error.
void WriteHdr(const sHdrPicture& pPicture, const std::string& pPath);

}  // namespace Scene
