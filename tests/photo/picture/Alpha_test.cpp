#include "photo/picture/Alpha.h"

#include <gtest/gtest.h>

#include "tests/Numbers.h"
#include "tests/photo/PictureOf.h"

namespace {

TEST(Alpha, RoundsFloatsAndRepeats8Bits) {
  for (unsigned i = 0; i < 256; ++i) {
    ASSERT_EQ(Photo::AlphaOf8Bits(i) / 257u, i);
    ASSERT_EQ(Photo::AlphaOf8Bits(i), Photo::AlphaOfFloat(static_cast<float>(i) / 255.0f));
  }
  for (const float none : {-1.0f, 0.0f, kNaN, -kInfinity}) EXPECT_EQ(Photo::AlphaOfFloat(none), 0);
  for (const float full : {1.0f, 2.0f, kInfinity}) EXPECT_EQ(Photo::AlphaOfFloat(full), 65535);
}

/// Covered light is divided by alpha; a picture with light of its own, such as a flame, stays premultiplied.
TEST(Alpha, DividesCoveredLightButKeepsLightOfItsOwn) {
  const struct {
    std::vector<float> fAlpha;
    std::vector<float> fLight;  // of the settled picture
  } cases[] = {{{0.5f, 0.5f, 1.0f, 0.75f}, {1.0f, 1.0f, 0.5f, 2.0f / 3.0f}},
               {{0.25f, 0.2f, 0.25f, 0.2f}, {2.0f, 2.5f, 2.0f, 2.5f}},
               {{0.5f, 0.0f, 1.0f, kNaN}, {0.5f, 0.5f, 0.5f, 0.5f}},  // alpha 0, and far too small
               {{1.0f, 0.001f, 1.0f, 1.0f}, {0.5f, 0.5f, 0.5f, 0.5f}},
               {{0.0f, 0.0f, 0.0f, 0.0f}, {0.5f, 0.5f, 0.5f, 0.5f}}};
  for (const auto& row : cases) {
    std::vector<std::uint16_t> alpha;
    for (const float value : row.fAlpha) alpha.push_back(Photo::AlphaOfFloat(value));
    Photo::sPicture picture = PictureOf(4, std::vector<float>(12, 0.5f), alpha);
    picture.fIsPremultiplied = true;
    Photo::SettleAlpha(picture);
    for (std::size_t x = 0; x < 4; ++x) EXPECT_NEAR(SamplesOf(picture)[3 * x + 1], row.fLight[x], 4e-5f) << x;
    EXPECT_EQ(picture.fIsPremultiplied, row.fLight[0] == 0.5f);
    EXPECT_EQ(picture.fAlpha, alpha);
  }
  Photo::sPicture hidden = PictureOf(4, SpreadToXYZ({0.5f, 0.0f, 0.5f, 0.5f}), {32768, 0, 65535, 49151});
  hidden.fIsPremultiplied = true;
  Photo::SettleAlpha(hidden);
  EXPECT_FALSE(hidden.fIsPremultiplied);  // no light where alpha is 0
}

/// Hidden pixels take colours of visible ones, evenly picked, so that quantiles stay those of visible pixels.
TEST(Alpha, HiddenPixelsTakeVisibleColours) {
  const std::vector<float> luminances = {1.0f, 9.0f, 2.0f, 9.0f, 3.0f, 9.0f, 4.0f, 5.0f};
  const std::vector<std::uint16_t> alpha = {1, 0, 65535, 0, 9, 0, 9, 9};
  Photo::sPicture picture = PictureOf(4, SpreadToXYZ(luminances), alpha);
  Photo::HideTransparent(picture);
  EXPECT_EQ(SamplesOf(picture), SpreadToXYZ({1.0f, 1.0f, 2.0f, 2.0f, 3.0f, 4.0f, 4.0f, 5.0f}));
  for (const bool isPremultiplied : {false, true}) {  // none visible, or seen without alpha
    Photo::sPicture other =
        PictureOf(4, SpreadToXYZ(luminances), isPremultiplied ? alpha : std::vector<std::uint16_t>(8));
    other.fIsPremultiplied = isPremultiplied;
    Photo::HideTransparent(other);
    EXPECT_EQ(SamplesOf(other), SpreadToXYZ(luminances));
  }
}

}  // namespace
