#include "engine/color/cColorSpace.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>

#include "engine/color/cTransfer.h"
#include "tests/ExceptionCheck.h"

namespace TmEngine {
namespace {

using tMatrix = std::array<double, 9>;

template <class tAny>
void ExpectMatrix(const tAny& pActual, const tMatrix& pExpected, double pTolerance) {
  for (int i = 0; i < 9; ++i) {
    EXPECT_NEAR(pActual[i], pExpected[static_cast<std::size_t>(i)], pTolerance) << "element " << i;
  }
}

void ExpectSame(const cMatrix33& pA, const cMatrix33& pB) {
  for (int i = 0; i < 9; ++i) EXPECT_EQ(pA[i], pB[i]) << "element " << i;
}

// pPoints: red, green, blue and white, x and y of each.
void ExpectPoints(const cColorSpace& pSpace, const float* pPoints, float pTolerance = 0.0f) {
  const cVector2 points[] = {pSpace.GetRedPrimary(), pSpace.GetGreenPrimary(), pSpace.GetBluePrimary(),
                             pSpace.GetWhitePoint()};
  for (int i = 0; i < 8; ++i) {
    EXPECT_NEAR(i % 2 == 0 ? points[i / 2].fX : points[i / 2].fY, pPoints[i], pTolerance) << i;
  }
}

const char* const kNames[] = {"sRGB IEC61966-2.1", "Adobe RGB (1998)", "ProPhoto RGB"};

const float kPoints[][8] = {{0.64f, 0.33f, 0.3f, 0.6f, 0.15f, 0.06f, 0.31271f, 0.32902f},
                            {0.64f, 0.33f, 0.21f, 0.71f, 0.15f, 0.06f, 0.31271f, 0.32902f},
                            {0.7347f, 0.2653f, 0.1596f, 0.8404f, 0.0366f, 0.0001f, 0.34567f, 0.3585f}};

const tMatrix kToXYZ[] = {
    {0.436022, 0.385109, 0.143081, 0.222475, 0.716907, 0.060618, 0.013928, 0.097102, 0.714159},
    {0.609719, 0.205268, 0.149225, 0.311102, 0.625677, 0.063221, 0.019477, 0.060889, 0.744822},
    {0.797667, 0.135192, 0.031353, 0.288037, 0.711877, 0.000086, 0, 0, 0.825188}};

const tMatrix kIdentity = {1, 0, 0, 0, 1, 0, 0, 0, 1};

std::unique_ptr<cColorSpace> MakeSpace(int pID) {
  return std::unique_ptr<cColorSpace>(cColorSpace::FromID(static_cast<eColorSpaceID>(pID)));
}

TEST(cColorSpace, KnowsTheNamedSpaces) {
  const float linearHalf[] = {0.21404114f, 0.21763764f, 0.28717458f};
  const float linearHundredth[] = {0x1.95cbbp-11f, 0x1.4df4e2p-15f, 0x1.0763f6p-12f};  // to the bit
  for (int id = 0; id < 3; ++id) {
    SCOPED_TRACE(kNames[id]);
    EXPECT_TRUE(cColorSpace::IsValidID(static_cast<eColorSpaceID>(id)));
    const auto made = MakeSpace(id);
    const std::unique_ptr<cColorSpace> cloned(made->Clone());
    EXPECT_NE(made->GetToLinear(), cloned->GetToLinear());
    for (const cColorSpace* space : {made.get(), cloned.get()}) {
      EXPECT_STREQ(space->GetName(), kNames[id]);
      EXPECT_FALSE(space->IsCustom());
      ExpectPoints(*space, kPoints[id]);
      ExpectMatrix(space->GetRGBToXYZ(), kToXYZ[id], 5.1e-7);
      ExpectMatrix(space->GetXYZToRGB() * space->GetRGBToXYZ(), kIdentity, 1e-6);
      ExpectMatrix(space->GetXYZToRGBNative() * space->GetRGBToXYZNative(), kIdentity, 1e-6);
      EXPECT_NEAR(space->GetToLinear()->Evaluate(0.5f), linearHalf[id], 1e-7f);
      EXPECT_EQ(space->GetToLinear()->Evaluate(0.01f), linearHundredth[id]);
      EXPECT_NEAR(space->GetFromLinear()->Evaluate(linearHalf[id]), 0.5f, 1e-7f);
    }
  }
}

TEST(cColorSpace, RefusesUnknownIds) {
  for (int id : {3, -1, 65536, -2147483647 - 1}) {
    EXPECT_FALSE(cColorSpace::IsValidID(static_cast<eColorSpaceID>(id)));
    EXPECT_EQ(
        ExpectThrow<cArgumentException>(
            [id] { MakeSpace(id); }, "Argument pID refers to an unknown color space.", ".\\cColorSpace.cpp"),
        "class TmEngine::cColorSpace *__cdecl TmEngine::cColorSpace::FromID(enum TmEngine::eColorSpaceID)");
  }
}

TEST(cColorSpace, BuildsMatricesToTheBit) {
  // Calculated apart, in double and in the same order.
  const tMatrix adapted = {0x1.be7c854e12b2bp-2, 0x1.8a59fbfef7fdcp-2, 0x1.2507c8b2329a8p-3,
                           0x1.c7a10f824ec1fp-3, 0x1.6f0e623c4189ep-1, 0x1.f0959e32ac5c2p-5,
                           0x1.c865a0aa67879p-7, 0x1.8dba530bbb3a6p-4, 0x1.6da63144d7a5cp-1};
  const tMatrix native = {0.4123865067135048,   0.35759149464703077, 0.1804505236527366,
                          0.21263680572638086,  0.7151829892940615,  0.07218020497955757,
                          0.019330618702398262, 0.11919711751764767, 0.9503727145828877};
  // An inverse of the rounded matrix would differ in the last bits.
  const tMatrix inverse = {3.1343116760253906,  -1.6172329187393188,  -0.4906857907772064,
                           -0.9787437915802002, 1.916114091873169,    0.033449798822402954,
                           0.07194817811250687, -0.22898635268211365, 1.4052709341049194};
  const auto call = [](const auto& pBuild) {
    return pBuild(0.64f, 0.33f, 0.3f, 0.6f, 0.15f, 0.06f, 0.31271f, 0.32902f);
  };
  ExpectMatrix(call(cColorSpace::BuildRGBToXYZd), adapted, 0.0);
  ExpectMatrix(call(cColorSpace::BuildRGBToXYZNatived), native, 0.0);
  ExpectMatrix(call(cColorSpace::BuildXYZToRGB), inverse, 0.0);
  const auto space = MakeSpace(0);
  ExpectSame(space->GetRGBToXYZ(), call(cColorSpace::BuildRGBToXYZ));
  ExpectSame(space->GetXYZToRGB(), call(cColorSpace::BuildXYZToRGB));
  ExpectSame(space->GetRGBToXYZNative(), call(cColorSpace::BuildRGBToXYZNative));
  ExpectSame(space->GetXYZToRGBNative(), call(cColorSpace::BuildXYZToRGBNative));
}

TEST(cColorSpace, AdaptsEveryWhiteButD50) {
  float x, y;
  cColorSpace::GetWhitePointD50(x, y);
  const cVector2 d50Point = cColorSpace::GetWhitePointD50(), d65Point = cColorSpace::GetWhitePointD65();
  EXPECT_EQ((std::array{d50Point.fX, d50Point.fY, x, y, d65Point.fX, d65Point.fY}),
            (std::array{0.34567f, 0.3585f, 0.34567f, 0.3585f, 0.31271f, 0.32902f}));
  const auto make = [](float pWhiteX, float pWhiteY) {
    const cVector2 red(0.64f, 0.33f), green(0.3f, 0.6f), blue(0.15f, 0.06f);
    return std::make_unique<cColorSpace_GenericRGB>(red, green, blue, cVector2(pWhiteX, pWhiteY), 2.0f);
  };
  const auto d50 = make(0.34567f, 0.3585f);
  ExpectSame(d50->GetRGBToXYZ(), d50->GetRGBToXYZNative());
  ExpectSame(d50->GetXYZToRGB(), d50->GetXYZToRGBNative());
  for (const auto& other : {make(0.3457f, 0.3585f), make(0.34567f, 0.3586f)}) {
    EXPECT_NE(other->GetRGBToXYZ()[0], other->GetRGBToXYZNative()[0]);
    const cVector3 adapted = other->GetRGBToXYZ() * cVector3(1.0f, 1.0f, 1.0f);
    EXPECT_NEAR(adapted[0], 0.964212, 1e-6);
    EXPECT_NEAR(adapted[2], 0.825188, 1e-6);
  }
}

TEST(cColorSpace_GenericRGB, ClonesIndependently) {
  const float points[] = {0.7f, 0.3f, 0.2f, 0.7f, 0.14f, 0.05f, 0.3f, 0.31f};
  auto source = std::make_unique<cColorSpace_GenericRGB>(cVector2(0.7f, 0.3f), cVector2(0.2f, 0.7f),
                                                         cVector2(0.14f, 0.05f), cVector2(0.3f, 0.31f), 1.5f);
  EXPECT_STREQ(source->GetName(), "Generic RGB");
  const std::unique_ptr<cColorSpace> clone(source->Clone());
  const cColorSpace& cloned = *clone;
  EXPECT_EQ(typeid(cloned), typeid(cColorSpace_GenericRGB));
  ExpectPoints(*clone, points);
  ExpectSame(clone->GetRGBToXYZNative(), source->GetRGBToXYZNative());
  ExpectSame(clone->GetXYZToRGBNative(), source->GetXYZToRGBNative());
  ExpectSame(clone->GetRGBToXYZ(), source->GetRGBToXYZ());
  ExpectSame(clone->GetXYZToRGB(), source->GetXYZToRGB());
  EXPECT_NE(clone->GetToLinear(), source->GetToLinear());
  source.reset();
  EXPECT_EQ(clone->GetToLinear()->Evaluate(0.5f), cTransferGamma(1.0f / 1.5f).Evaluate(0.5f));
  EXPECT_EQ(clone->GetFromLinear()->Evaluate(0.5f), cTransferGamma(1.5f).Evaluate(0.5f));
  const std::unique_ptr<cColorSpace> empty(cColorSpace_GenericRGB().Clone());
  EXPECT_EQ(empty->GetToLinear(), nullptr);
  EXPECT_EQ(empty->GetFromLinear(), nullptr);
}

TEST(cColorSpace_GenericRGB, FindsThePrimariesBehindColorants) {
  unsigned short toLinear[] = {0, 16384, 65535};
  unsigned short fromLinear[] = {0, 49151, 65535, 65535};
  for (int id = 0; id < 3; ++id) {
    SCOPED_TRACE(kNames[id]);
    const auto named = MakeSpace(id);
    const cVector3 white = named->GetRGBToXYZNative() * cVector3(1.0f, 1.0f, 1.0f);
    const cColorSpace_GenericRGB space(named->GetRGBToXYZ(), white, toLinear, 3, fromLinear, 4);
    ExpectPoints(space, kPoints[id], 1e-6f);
    ExpectMatrix(space.GetRGBToXYZ(), kToXYZ[id], 3e-6);
    EXPECT_EQ(space.GetToLinear()->Evaluate(0.5f), 16384 / 65535.0f);
    EXPECT_EQ(space.GetFromLinear()->Evaluate(2.0f / 3.0f), 1.0f);
  }
}

}  // namespace
}  // namespace TmEngine
