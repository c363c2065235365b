#include "photo/picture/AlphaChoice.h"

#include <charconv>

namespace Photo {
namespace {

/// Six hexadecimal digits, or three that stand for two equal ones each.
std::optional<sAlphaChoice> ParseDigits(const std::string& pText) {
  const bool isShort = pText.size() == 3;
  if (!isShort && pText.size() != 6) return std::nullopt;
  sAlphaChoice choice{eAlpha::kColour, {}};
  const std::size_t digits = isShort ? 1 : 2;
  for (std::size_t i = 0; i < 3; ++i) {
    const char* const first = pText.data() + i * digits;
    unsigned value = 0;
    const auto read = std::from_chars(first, first + digits, value, 16);
    if (read.ec != std::errc() || read.ptr != first + digits) return std::nullopt;
    choice.fColour[i] = static_cast<std::uint8_t>(isShort ? 17 * value : value);
  }
  return choice;
}

}  // namespace

std::optional<sAlphaChoice> ParseAlpha(const std::string& pText) {
  if (pText == "keep") return sAlphaChoice{};
  if (pText == "ignore") return sAlphaChoice{eAlpha::kIgnore, {}};
  if (pText == "black") return sAlphaChoice{eAlpha::kColour, {0, 0, 0}};
  if (pText == "white") return sAlphaChoice{eAlpha::kColour, {255, 255, 255}};
  if (pText == "grey" || pText == "gray") return sAlphaChoice{eAlpha::kColour, {128, 128, 128}};
  return ParseDigits(pText.starts_with('#') ? pText.substr(1) : pText);
}

std::string ToText(const sAlphaChoice& pChoice) {
  if (pChoice.fMode == eAlpha::kKeep) return "keep";
  if (pChoice.fMode == eAlpha::kIgnore) return "ignore";
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text = "#";
  for (const unsigned channel : pChoice.fColour) {
    text += kDigits[channel >> 4];
    text += kDigits[channel & 15];
  }
  return text;
}

}  // namespace Photo
