#include "photo/picture/Repairs.h"

namespace Photo {
namespace {

std::string CountPixels(std::int64_t pCount) {
  return std::to_string(pCount) + (pCount == 1 ? " pixel" : " pixels");
}

}  // namespace

void WarnOfRepairs(const sRepairs& pRepairs, std::vector<std::string>& pWarnings) {
  if (const std::int64_t count = pRepairs.fNaN + pRepairs.fInfinite; count > 0) {
    pWarnings.push_back("repaired " + CountPixels(count) + " with values that are not finite (" +
                        std::to_string(pRepairs.fNaN) + " not a number, " +
                        std::to_string(pRepairs.fInfinite) + " infinite)");
  }
  if (pRepairs.fOutliers > 0) {
    pWarnings.push_back("repaired " + CountPixels(pRepairs.fOutliers) +
                        " too far above all other light (outliers)");
  }
}

}  // namespace Photo
