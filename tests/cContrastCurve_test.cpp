#include "engine/cContrastCurve.h"

#include <gtest/gtest.h>

namespace TmEngine {
namespace {

TEST(cContrastCurve, HoldsFiveFramesFromBrightToSteep) {
  cContrastCurve curve;
  EXPECT_EQ(curve.GetKeyFrameCount(), 5);
  EXPECT_EQ(curve.GetCount(), 2);
  EXPECT_EQ(curve.GetMode(), eSplineInterpolationMode_Supplied);
  unsigned short tenth = 65535;
  for (int frame = 0; frame < 5; ++frame) {  // the table follows every new position
    curve.InterpolateKeyFrames(static_cast<float>(frame) / 4.0f);
    const unsigned short* table = curve.Get16BitTable();
    EXPECT_EQ(table[0], 0);
    EXPECT_EQ(table[65535], 65535);
    for (int k = 1; k < 65536; ++k) ASSERT_GE(table[k], table[k - 1]) << frame << ' ' << k;
    for (int k = 0; frame == 2 && k < 65536; ++k) ASSERT_NEAR(table[k], k, 1);
    EXPECT_LT(table[6553], tenth - 1000) << frame;
    tenth = table[6553];
    EXPECT_EQ(curve.GetPreviousTangentAt(0).fX, 1.0f);
    EXPECT_EQ(curve.GetNextTangentAt(1).fY, 1.0f);
  }
  curve.InterpolateKeyFrames(0.125f);
  EXPECT_FLOAT_EQ(curve.GetNextTangentAt(0).fX, (0.308f + 0.449f) / 2);
  EXPECT_FLOAT_EQ(curve.GetNextTangentAt(0).fY, (1.09f + 0.769f) / 2);
  EXPECT_FLOAT_EQ(curve.GetPreviousTangentAt(1).fX, (1.752f + 2.173f) / 2);
  EXPECT_FLOAT_EQ(curve.GetPreviousTangentAt(1).fY, (2.714f + 2.634f) / 2);
}

}  // namespace
}  // namespace TmEngine
