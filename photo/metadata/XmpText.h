#pragma once

#include <string>

namespace Cli {

// The tool's settings in the text of an XMP packet: the property quorvane:Settings.

/// The packet with the settings in it; an empty or strange one makes place for a new one.
std::string PutSettingsIntoXmp(std::string pPacket, const std::string& pJson);

/// The settings that the packet holds; empty for none.
std::string FindSettingsInXmp(const std::string& pPacket);

/// The packet without how a raw file was developed (crs), which programs would do to the result again.
std::string DropDevelopment(std::string pPacket);

/// With what GPano says of a panorama in pixels fitted to this size.
std::string FitPanorama(std::string pPacket, int pWidth, int pHeight);

/// Writes 1, for upright, over what the packet says of the orientation.
std::string TurnXmpUpright(std::string pPacket);

}  // namespace Cli
