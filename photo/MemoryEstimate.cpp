#include "photo/MemoryEstimate.h"

#include <limits>

namespace Photo {

std::int64_t EstimateMemory(std::int64_t pPixels, eOutputFormat pFormat, int pDepth) {
  const bool isDeep = pDepth > 8;
  switch (pFormat) {
    case eOutputFormat::kAvif:
      return EstimateMemory(pPixels, isDeep ? 80 : 60);
    case eOutputFormat::kJxl:
      return EstimateMemory(pPixels, 110);
    default:
      return EstimateMemory(pPixels, 44);
  }
}

std::int64_t EstimateMemory(std::int64_t pPixels, std::int64_t pBytes) {
  constexpr std::int64_t kUnlimited = std::numeric_limits<std::int64_t>::max();
  constexpr std::int64_t kProcess = std::int64_t{64} << 20;  // beside the pixels
  return pPixels > (kUnlimited - kProcess) / pBytes ? kUnlimited : kProcess + pPixels * pBytes;
}

}  // namespace Photo
