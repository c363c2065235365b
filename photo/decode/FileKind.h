#pragma once

#include <string>

namespace Photo {

/// Who reads a file. It is told by the file's content, not by its name.
enum class eFileKind { kExr, kPfm, kVips };

/// Throws cFailure, in plain words, for what nobody can read as a file.
eFileKind DetectFileKind(const std::string& pFile);

}  // namespace Photo
