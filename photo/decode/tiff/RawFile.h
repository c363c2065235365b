#pragma once

#include <string>

namespace Photo {

/// What kind of a camera's raw file it is, in words; empty for other files. Raw files of many kinds are TIFF
/// files of a thumbnail, with the real picture beside it.
std::string NameRawFile(const std::string& pFile);

}  // namespace Photo
