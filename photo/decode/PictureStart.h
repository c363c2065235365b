#pragma once

#include <string>
#include <string_view>

namespace Photo {

/// Whether pStart, the first 16 bytes of a file or all of it, is how a picture begins of a format that this
/// program reads.
bool IsPictureStart(std::string_view pStart);

/// The same of a file's content, which is never waited for: anything but a regular file that can be read is
/// no picture.
bool HoldsPicture(const std::string& pFile);

}  // namespace Photo
