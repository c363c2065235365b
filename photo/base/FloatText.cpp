#include "photo/base/FloatText.h"

#include <algorithm>
#include <cmath>
#include <locale>
#include <sstream>

namespace Photo {
namespace {

constexpr int kMostDigits = 9;  // enough to distinguish any two floats

std::string Format(float pNumber, std::ios_base::fmtflags pNotation, int pDigitsBehindPoint) {
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text.setf(pNotation, std::ios_base::floatfield);
  text.precision(pDigitsBehindPoint);
  text << pNumber;
  return text.str();
}

std::size_t CountDigits(std::string_view pText) {
  return std::min(pText.find_first_not_of("0123456789"), pText.size());
}

/// Streams take more than decimal numbers: blanks in front, signs, and in some libraries hexadecimal ones.
bool IsDecimal(std::string_view pText) {
  const auto skip = [&pText](std::size_t pCount) {
    pText.remove_prefix(pCount);
    return pCount;
  };
  if (pText.starts_with('-')) skip(1);
  std::size_t digits = skip(CountDigits(pText));
  if (pText.starts_with('.')) {
    skip(1);
    digits += skip(CountDigits(pText));
  }
  if (digits == 0 || pText.empty()) return digits > 0;
  if (!pText.starts_with('e') && !pText.starts_with('E')) return false;
  skip(1);
  if (pText.starts_with('-') || pText.starts_with('+')) skip(1);
  return skip(CountDigits(pText)) > 0 && pText.empty();
}

/// Whether a decimal number is 0 as it is written.
bool IsZero(std::string_view pText) {
  return pText.substr(0, pText.find_first_of("eE")).find_first_of("123456789") == std::string_view::npos;
}

}  // namespace

std::optional<float> ParseFloat(std::string_view pText) {
  if (!IsDecimal(pText)) return std::nullopt;
  std::istringstream stream{std::string(pText)};
  stream.imbue(std::locale::classic());
  float number = 0.0f;
  stream >> number;
  if (IsZero(pText)) return std::copysign(0.0f, pText.starts_with('-') ? -1.0f : 1.0f);
  // Libraries differ in what fails: all report numbers that are too large, some also denormals, which are
  // none.
  const bool isTooLarge = stream.fail() && std::fabs(number) > 1.0f;
  return isTooLarge || number == 0.0f ? std::nullopt : std::optional(number);
}

std::string ToText(float pNumber) {
  int behindPoint = 0;
  std::string scientific = Format(pNumber, std::ios_base::scientific, behindPoint);
  while (behindPoint + 1 < kMostDigits && ParseFloat(scientific) != pNumber) {
    scientific = Format(pNumber, std::ios_base::scientific, ++behindPoint);
  }
  const int exponent = std::stoi(scientific.substr(scientific.find('e') + 1));
  std::string fixed = Format(pNumber, std::ios_base::fixed, std::max(behindPoint - exponent, 0));
  return fixed.size() <= scientific.size() ? fixed : scientific;
}

}  // namespace Photo
