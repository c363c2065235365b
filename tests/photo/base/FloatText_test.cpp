#include "photo/base/FloatText.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <random>

#include "photo/base/FloatBits.h"

namespace Photo {
namespace {

/// What std::from_chars takes of a text as a whole, but for infinity and NaN.
std::optional<float> Expected(const std::string& pText) {
  float number = 0.0f;
  const auto [end, error] = std::from_chars(pText.data(), pText.data() + pText.size(), number);
  const bool isNumber = error == std::errc() && end == pText.data() + pText.size() && std::isfinite(number);
  return isNumber ? std::optional(number) : std::nullopt;
}

void ExpectSame(const std::string& pText) {
  const std::optional<float> expected = Expected(pText), found = ParseFloat(pText);
  ASSERT_EQ(expected.has_value(), found.has_value()) << pText;
  if (found) {
    EXPECT_EQ(BitsOf(*expected), BitsOf(*found)) << pText;
  }
}

TEST(FloatText, ParsesAsFromCharsDoes) {
  for (const char* text :
       {"",      "-",     ".",     "-.5",  "5.",    "+1",     " 1",     "1 ",          "1e5",   "1e",
        "1e-",   "1E+3",  "-0",    "nan",  "inf",   "0x10",   "1,5",    "1..2",        "00012", "0e99",
        "1e-44", "7e-46", "8e-46", "1e60", "1e400", "1e-400", "3.5e38", "3.4028236e38"}) {
    ExpectSame(text);
  }
  std::mt19937 random(1);
  for (int i = 0; i < 50000; ++i) {
    std::string text;
    for (auto length = random() % 8; length > 0; --length) text += "0123456789.eE-+"[random() % 15];
    ExpectSame(text);
  }
}

TEST(FloatText, WritesAsToCharsDoes) {
  std::mt19937 random(2);
  for (int i = 0; i < 50000; ++i) {
    float number = FloatOf(static_cast<std::int32_t>(random()));
    if (!std::isfinite(number)) continue;
    if (i % 2 == 0) number = std::fmod(number, 200.0f);
    char text[64];
    const std::string expected(text, std::to_chars(text, text + sizeof text, number).ptr);
    EXPECT_EQ(ToText(number), expected);
  }
}

}  // namespace
}  // namespace Photo
