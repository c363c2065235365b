#include "photo/metadata/PanoramaSizes.h"

#include <cmath>

namespace Photo {
namespace {

using tGet = std::function<std::optional<long>(const std::string&)>;

/// Across or down: the picture is an area of the full panorama, or all of it.
struct sAxis {
  const char* fArea;
  const char* fFull;
  const char* fStart;
};
constexpr sAxis kAcross = {"CroppedAreaImageWidthPixels", "FullPanoWidthPixels", "CroppedAreaLeftPixels"};
constexpr sAxis kDown = {"CroppedAreaImageHeightPixels", "FullPanoHeightPixels", "CroppedAreaTopPixels"};

void FitAxis(const tGet& pGet, const sAxis& pAxis, int pSize, std::map<std::string, long>& pTo) {
  const std::optional<long> area = pGet(pAxis.fArea);
  const long before = area.value_or(pGet(pAxis.fFull).value_or(0));
  if (before <= 0 || before == pSize) return;
  const double scale = static_cast<double>(pSize) / static_cast<double>(before);
  for (const char* const name : {pAxis.fArea, pAxis.fFull, pAxis.fStart}) {
    constexpr double kMost = 1e9;
    const std::optional<long> number = pGet(name);
    if (!number || std::fabs(static_cast<double>(*number)) > kMost) continue;
    pTo[name] = std::lround(static_cast<double>(*number) * scale);
  }
}

}  // namespace

std::map<std::string, long> FitPanoramaSizes(const tGet& pGet, int pWidth, int pHeight) {
  std::map<std::string, long> changed;
  FitAxis(pGet, kAcross, pWidth, changed);
  FitAxis(pGet, kDown, pHeight, changed);
  return changed;
}

}  // namespace Photo
