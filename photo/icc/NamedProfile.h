#pragma once

#include <string>

#include "engine/color/cColorSpace.h"

namespace Photo {

/// The profile that describes a named colour space.
std::string GetIccProfile(TmEngine::eColorSpaceID pColorSpace);

/// The profile as PNG files get it. That of sRGB has the length of a widespread one, which PNG libraries take
/// it for and warn of; with its own checksum in its header, the ID of 16 bytes, it is another. All else
/// stays.
std::string ToPngProfile(const std::string& pProfile);
/// The reverse of ToPngProfile.
std::string FromPngProfile(const std::string& pProfile);

/// The index by which EXIF names a profile's colours: "R98" for sRGB, "R03" for Adobe RGB (1998), "" for
/// none.
const char* FindInteropIndex(const std::string& pProfile);

}  // namespace Photo
