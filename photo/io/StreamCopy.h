#pragma once

#include <cstdint>
#include <limits>

namespace Photo {

/// Copies from a handle to its end. Returns false, with errno set, when that fails; ENOMEM for more than
/// pMost bytes.
bool CopyStream(int pFrom, int pTo, std::int64_t pMost = std::numeric_limits<std::int64_t>::max());

}  // namespace Photo
