#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace Photo {

/// Far deeper than what this program writes or reads. Each level of a value takes stack wherever the value is
/// shown, copied or compared.
inline constexpr int kDeepestJson = 64;

/// On one line. Bytes that are not UTF-8 become U+FFFD; characters that a terminal would obey are escaped.
std::string ToLine(const nlohmann::ordered_json& pObject);

/// What ToLine made. Throws std::exception, also for what is nested deeper than kDeepestJson.
nlohmann::ordered_json FromLine(const std::string& pLine);

/// Sets pKey to a file's name. A name that is not UTF-8 is also given byte for byte, as pKey_base64.
void PutName(nlohmann::ordered_json& pObject, const std::string& pKey, const std::string& pName);

}  // namespace Photo
