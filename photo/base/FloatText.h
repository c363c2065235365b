#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Photo {

// Numbers as text, independent of the locale. They give what std::from_chars and std::to_chars give for
// floats, which some standard libraries do not have.

/// The float nearest to a decimal number such as "-2.5", ".5" or "1e-3", which has to be all of pText. None
/// for anything else, and for numbers beyond the range of floats, or so small that they would become 0.
std::optional<float> ParseFloat(std::string_view pText);

/// The shortest text that reads back as pNumber, which is finite: "0.1", "70", "1e-06".
std::string ToText(float pNumber);

}  // namespace Photo
