#pragma once

#include <string>

namespace Photo {

/// All of a file. Throws std::runtime_error.
std::string ReadBytes(const std::string& pPath);

/// In place of what the file holds. Throws std::runtime_error.
void WriteBytes(const std::string& pPath, const std::string& pBytes);

}  // namespace Photo
