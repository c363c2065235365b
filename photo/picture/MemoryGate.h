#pragma once

#include <cstdint>
#include <functional>

namespace Photo {

/// Asked for memory once for each picture, when its size has just become known and its pixels are not yet
/// read. It may wait, or throw the cFailure for a picture that is too large. Empty: memory is not limited.
using tMemoryGate = std::function<void(std::int64_t pPixels)>;

}  // namespace Photo
