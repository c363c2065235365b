#include "photo/Printable.h"

#include <fmt/format.h>

#include <glib.h>

#include <cstdint>

namespace Photo {
namespace {

struct sCharacter {
  std::uint32_t fCode = 0;
  std::size_t fBytes = 1;
  bool fIsUtf8 = true;  ///< Otherwise it is a byte.
};

sCharacter ReadCharacter(const std::string& pText, std::size_t pAt) {
  const auto byte = static_cast<unsigned char>(pText[pAt]);
  if (byte < 0x80) return {byte, 1, true};
  const char* const from = pText.c_str() + pAt;
  const gunichar code = g_utf8_get_char_validated(from, static_cast<gssize>(pText.size() - pAt));
  if (code >= 0x110000) return {byte, 1, false};
  return {code, static_cast<std::size_t>(g_utf8_next_char(from) - from), true};
}

/// Controls, ends of lines and paragraphs, and marks that turn the direction of what follows.
bool IsHarmful(std::uint32_t pCode) {
  const auto isIn = [pCode](std::uint32_t pFirst, std::uint32_t pLast) {
    return pCode >= pFirst && pCode <= pLast;
  };
  return pCode < 0x20 || isIn(0x7f, 0x9f) || pCode == 0x61c || isIn(0x200e, 0x200f) || isIn(0x2028, 0x202e) ||
         isIn(0x2066, 0x2069);
}

/// pShort: for codes of one byte, and for bytes that are no characters.
std::string Escape(const std::string& pText, const char* pShort) {
  std::string text;
  for (std::size_t at = 0; at < pText.size();) {
    const sCharacter next = ReadCharacter(pText, at);
    if (!next.fIsUtf8 || IsHarmful(next.fCode)) {
      text += next.fBytes == 1 ? fmt::format(fmt::runtime(pShort), next.fCode)
                               : fmt::format("\\u{:04x}", next.fCode);
    } else {
      text.append(pText, at, next.fBytes);
    }
    at += next.fBytes;
  }
  return text;
}

}  // namespace

std::string ToPrintable(const std::string& pText) {
  return Escape(pText, "\\x{:02x}");
}

std::vector<std::string> ToPrintable(const std::vector<std::string>& pTexts) {
  std::vector<std::string> texts;
  texts.reserve(pTexts.size());
  for (const std::string& text : pTexts) texts.push_back(ToPrintable(text));
  return texts;
}

std::string ToPrintableJson(const std::string& pJson) {
  return Escape(pJson, "\\u{:04x}");
}

bool IsUtf8(const std::string& pText) {
  return g_utf8_validate(pText.data(), static_cast<gssize>(pText.size()), nullptr) != 0;
}

}  // namespace Photo
