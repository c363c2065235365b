#pragma once

#include <string>

#include "examples/scene/Render.h"

namespace Scene {

/// Writes an OpenEXR picture with 32-bit float channels. Throws std::runtime_error.
void WriteExr(const sHdrPicture& pPicture, const std::string& pPath);

}  // namespace Scene
