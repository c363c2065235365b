#pragma once

#include <string>

namespace Photo {

/// Messages of this library name what its caller can choose otherwise in braces: "use {depth} 8". Who shows
/// one to people says what they call it there: pPrefix comes before each of these names, and the braces go.
/// Only the names that are known count; other text in braces stays.
std::string NameParameters(const std::string& pText, const std::string& pPrefix = "");

}  // namespace Photo
