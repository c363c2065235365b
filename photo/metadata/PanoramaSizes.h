#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

namespace Cli {

/// The numbers by which GPano (XMP) describes a panorama in pixels, as they are for a picture of another
/// size: only those that change. pGet: of a name without its prefix, where it is there.
std::map<std::string, long> FollowSize(const std::function<std::optional<long>(const std::string&)>& pGet,
                                       int pWidth, int pHeight);

}  // namespace Cli
