#include "photo/picture/AlphaChoice.h"

#include <gtest/gtest.h>

namespace {

TEST(AlphaChoice, ReadsNamesAndDigitsAndWritesWhatItReads) {
  const struct {
    const char* fText;
    Photo::sAlphaChoice fChoice;
  } rows[] = {{"keep", {}},
              {"ignore", {Photo::eAlpha::kIgnore, {}}},
              {"white", {Photo::eAlpha::kColour, {255, 255, 255}}},
              {"#0a80Ff", {Photo::eAlpha::kColour, {10, 128, 255}}},
              {"1af", {Photo::eAlpha::kColour, {17, 170, 255}}}};
  for (const auto& row : rows) {
    EXPECT_EQ(Photo::ParseAlpha(row.fText), row.fChoice) << row.fText;
    EXPECT_EQ(Photo::ParseAlpha(ToText(row.fChoice)), row.fChoice) << row.fText;
  }
  for (const char* const wrong : {"", "#", "12", "1234", "12345g", "#1234567", "blackish", " fff"}) {
    EXPECT_EQ(Photo::ParseAlpha(wrong), std::nullopt) << wrong;
  }
}

}  // namespace
