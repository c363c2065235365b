#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace Photo {

/// What becomes of a picture's alpha.
enum class eAlpha {
  kKeep,    ///< It is written beside the colours.
  kIgnore,  ///< It is not read: the stored colours are the picture.
  kColour   ///< The finished picture is laid over a colour.
};

struct sAlphaChoice {
  eAlpha fMode = eAlpha::kKeep;
  std::array<std::uint8_t, 3> fColour = {};  ///< sRGB.

  bool operator==(const sAlphaChoice&) const = default;
};

/// "keep", "ignore", a colour by name (black, white, grey) or by its digits ("#808080", "808080", "fff").
std::optional<sAlphaChoice> ParseAlpha(const std::string& pText);
/// A text that ParseAlpha takes.
std::string ToText(const sAlphaChoice& pChoice);

}  // namespace Photo
