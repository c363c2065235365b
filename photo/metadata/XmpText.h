#pragma once

#include <optional>
#include <string>

namespace Photo {

// XMP packets, where no library of their own handles them. Properties are known by their usual prefixes.

/// The packet with the tool's settings as the property quorvane:Settings; an empty or damaged one is
/// replaced.
std::string PutSettingsIntoXmp(const std::string& pPacket, const std::string& pJson);

/// The settings that the packet holds; empty for none.
std::string FindSettingsInXmp(const std::string& pPacket);

/// The packet as it is right for an upright picture of this size: without how a raw file was developed (crs),
/// which programs would do to the result again, and with a panorama's sizes (GPano) fitted. None for a
/// damaged one.
std::optional<std::string> CorrectXmp(const std::string& pPacket, int pWidth, int pHeight);

}  // namespace Photo
