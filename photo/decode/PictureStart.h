#pragma once

#include <string>
#include <string_view>

namespace Photo {

/// Whether pStart, the first 16 bytes of a file or all of it, is how a picture begins of a format that this
/// program reads.
bool IsPictureStart(std::string_view pStart);

/// Whether a file begins like a picture. Never waits: anything but a regular file that can be read is no
/// picture.
bool HoldsPicture(const std::string& pFile);

}  // namespace Photo
