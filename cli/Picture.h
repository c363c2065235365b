#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/cBitmapXYZ32.h"

namespace Cli {

/// A picture as the engine takes it, and what its reader had to put right on the way.
struct sPicture {
  std::unique_ptr<TmEngine::cBitmapXYZ32> fBitmap;  ///< D50-relative XYZ, linear, every sample finite.
  std::vector<std::string> fWarnings;
};

/// A picture of the given size, its pixels not set. Throws cFailure, in the name of pFile, for sizes that no
/// memory holds.
sPicture MakePicture(const std::string& pFile, std::int64_t pWidth, std::int64_t pHeight);

/// Tells on standard error what the reader of pFile had to put right.
void PrintWarnings(const std::string& pFile, const std::vector<std::string>& pWarnings);

/// First sample of row pY.
float* GetRow(const sPicture& pPicture, int pY);

}  // namespace Cli
