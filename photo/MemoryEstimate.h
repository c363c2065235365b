#pragma once

#include <cstdint>

#include "photo/encode/OutputFormat.h"

namespace Photo {

/// The most that a process holds while it reads, renders and writes a picture, in bytes; measured. Encoders
/// of some formats need more than the engine does.
std::int64_t EstimateMemory(std::int64_t pPixels, eOutputFormat pFormat, int pDepth);

/// For work that takes pBytes per pixel. Too large a product becomes the largest number.
std::int64_t EstimateMemory(std::int64_t pPixels, std::int64_t pBytes);

}  // namespace Photo
