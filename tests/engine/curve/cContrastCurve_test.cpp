#include "engine/curve/cContrastCurve.h"

#include <gtest/gtest.h>

namespace TmEngine {
namespace {

TEST(cContrastCurve, HoldsFiveFramesFromBrightToSteep) {
  cContrastCurve curve;
  EXPECT_EQ(curve.GetKeyFrameCount(), 5);
  EXPECT_EQ(curve.GetCount(), 2);
  EXPECT_EQ(curve.GetMode(), eSplineInterpolationMode_Supplied);
  const float tangents[][4] = {{0.308f, 1.09f, 1.752f, 2.714f},
                               {0.449f, 0.769f, 2.173f, 2.634f},
                               {0, 0, 0, 0},
                               {0.5f, 0, 1.25f, 0},
                               {1, 0, 2.22f, 0}};
  int tenth = 65535;
  for (int frame = 0; frame < 5; ++frame) {  // the table follows every new position
    curve.InterpolateKeyFrames(static_cast<float>(frame) / 4.0f);
    const unsigned short* table = curve.Get16BitTable();
    EXPECT_EQ(table[0], 0);
    EXPECT_EQ(table[65535], 65535);
    for (int k = 0; frame == 2 && k < 65536; ++k) ASSERT_NEAR(table[k], k, 1);
    EXPECT_LT(table[6553], tenth - 1000) << frame;
    tenth = table[6553];
    const cVector2 &leaving = curve.GetNextTangentAt(0), &reaching = curve.GetPreviousTangentAt(1);
    const float got[] = {leaving.fX, leaving.fY, reaching.fX, reaching.fY};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(got[i], tangents[frame][i]) << frame << ' ' << i;
  }
}

}  // namespace
}  // namespace TmEngine
