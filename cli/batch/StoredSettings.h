#pragma once

#include <string>

namespace Tool {

/// ReadStoredSettings in a process of its own: the caller's stays without libvips, so that it can still begin
/// workers. Throws cFailure.
std::string ReadStoredSettingsApart(const std::string& pFile);

}  // namespace Tool
