#pragma once

#include <string>

namespace Photo {

/// Which reader a file is for, detected by its content, not by its name.
enum class eFileKind { kExr, kPfm, kVips };

/// Throws cFailure, in plain words, for what cannot be read as a file.
eFileKind DetectFileKind(const std::string& pFile);

}  // namespace Photo
