#include "photo/base/ShortText.h"

#include <cstddef>

namespace Photo {
namespace {

bool IsInsideLetter(char pByte) {
  return (static_cast<unsigned char>(pByte) & 0xc0) == 0x80;
}

}  // namespace

std::string Shorten(const std::string& pText) {
  constexpr std::size_t kLongest = 2000;
  constexpr std::size_t kStart = 1200;
  constexpr std::size_t kEnd = 600;
  constexpr std::size_t kMostOfLetter = 3;  // bytes after its first
  if (pText.size() <= kLongest) return pText;
  std::size_t start = kStart;
  std::size_t end = pText.size() - kEnd;
  while (start > kStart - kMostOfLetter && IsInsideLetter(pText[start])) --start;
  while (end < pText.size() - kEnd + kMostOfLetter && IsInsideLetter(pText[end])) ++end;
  return pText.substr(0, start) + "... (" + std::to_string(end - start) + " bytes left out) ..." +
         pText.substr(end);
}

}  // namespace Photo
