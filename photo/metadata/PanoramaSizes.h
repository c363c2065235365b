#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

namespace Photo {

/// The numbers by which GPano (XMP) describes a panorama in pixels, as they are for a picture of another
/// size: only those that change. pGet: the number of a name without its prefix, if the picture has it.
std::map<std::string, long> FitPanoramaSizes(
    const std::function<std::optional<long>(const std::string&)>& pGet, int pWidth, int pHeight);

}  // namespace Photo
