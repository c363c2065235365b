#include "photo/light/LinearLight.h"

#include <gtest/gtest.h>

#include "tests/Numbers.h"

namespace {

using Photo::sPrimaries;

TEST(LinearLight, PrimariesNeedATriangleAroundTheirWhite) {
  EXPECT_TRUE(Photo::SpanColorSpace({}));
  EXPECT_TRUE(
      Photo::SpanColorSpace({{0.3f, 0.6f}, {0.64f, 0.33f}, {0.15f, 0.06f}, {0.31f, 0.33f}}));  // clockwise
  const sPrimaries none[] = {{{0.3f, 0.3f}, {0.4f, 0.4f}, {0.5f, 0.5f}, {0.3f, 0.3f}},         // on a line
                             {{0.64f, 0.33f}, {0.3f, 0.6f}, {0.15f, 0.06f}, {0.7f, 0.7f}},
                             {{0.64f, 0.33f}, {0.3f, 0.6f}, {0.15f, 0.06f}, {kNaN, 0.3f}},
                             {{kInfinity, 0.33f}, {0.3f, 0.6f}, {0.15f, 0.06f}, {0.31f, 0.33f}},
                             {{0.0f, 0.0f}, {0.0f, 0.0f}, {0.0f, 0.0f}, {0.0f, 0.0f}}};
  for (const sPrimaries& primaries : none) EXPECT_FALSE(Photo::SpanColorSpace(primaries));
}

TEST(LinearLight, NamesPrimariesThatAreAlike) {
  EXPECT_EQ(Photo::NamePrimaries({}), "sRGB primaries");
  EXPECT_EQ(Photo::NamePrimaries({{0.7079f, 0.292f}, {0.17f, 0.797f}, {0.131f, 0.046f}, {0.3127f, 0.329f}}),
            "Rec. 2020 primaries");
  EXPECT_EQ(Photo::NamePrimaries({{0.66f, 0.33f}, {0.3f, 0.6f}, {0.15f, 0.06f}, {0.3127f, 0.329f}}),
            "primaries of the file's own");
}

}  // namespace
