#pragma once

#include <string>

namespace Photo {

/// The text, or its beginning and end where it is absurdly long: files can make others quote all that they
/// hold. UTF-8 stays UTF-8.
std::string Shorten(const std::string& pText);

}  // namespace Photo
