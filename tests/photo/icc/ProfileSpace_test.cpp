#include "photo/icc/ProfileSpace.h"

#include <gtest/gtest.h>

#include "engine/color/cTransfer.h"
#include "photo/icc/IccHandle.h"
#include "photo/icc/NamedProfile.h"

namespace {

/// A profile with these primaries and a gamma for each channel.
std::string MakeProfile(cmsCIExyYTRIPLE pPrimaries, const double (&pGammas)[3]) {
  const cmsCIExyY white = {0.3127, 0.329, 1.0};
  cmsToneCurve* curves[3];
  for (int i = 0; i < 3; ++i) curves[i] = cmsBuildGamma(nullptr, pGammas[i]);
  const Photo::tIccHandle profile(cmsCreateRGBProfile(&white, &pPrimaries, curves));
  cmsFreeToneCurveTriple(curves);
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(profile.get(), nullptr, &size);
  std::string bytes(size, '\0');
  cmsSaveProfileToMem(profile.get(), bytes.data(), &size);
  return bytes;
}
const cmsCIExyYTRIPLE kDisplayP3 = {{0.68, 0.32, 1.0}, {0.265, 0.69, 1.0}, {0.15, 0.06, 1.0}};
const cmsCIExyYTRIPLE kSmall = {{0.6, 0.33, 1.0}, {0.3, 0.55, 1.0}, {0.17, 0.1, 1.0}};

auto Decode(const std::string& pProfile) {
  return Photo::cIccDecoder::FromProfile(pProfile.data(), pProfile.size(), 3);
}

TEST(ProfileSpace, FindsTheNamedSpaces) {
  for (const auto id : {TmEngine::eColorSpaceID_sRGB, TmEngine::eColorSpaceID_AdobeRGB98,
                        TmEngine::eColorSpaceID_ProPhotoRGB}) {
    const std::string profile = Photo::GetIccProfile(id);
    const auto space = Photo::MatchProfile(profile, *Decode(profile));
    ASSERT_NE(space, nullptr);
    const std::unique_ptr<TmEngine::cColorSpace> named(TmEngine::cColorSpace::FromID(id));
    EXPECT_STREQ(space->GetName(), named->GetName());
    EXPECT_EQ(Photo::ChooseWideSpace(*Decode(profile), 3), id);
  }
}

TEST(ProfileSpace, BuildsASpaceForOneCurveAndRefusesSeveral) {
  const std::string display = MakeProfile(kDisplayP3, {2.2, 2.2, 2.2});
  const auto space = Photo::MatchProfile(display, *Decode(display));
  ASSERT_NE(space, nullptr);
  EXPECT_NEAR(space->GetToLinear()->Evaluate(0.5f), 0.21764f, 1e-4f);
  const std::string mixed = MakeProfile(kDisplayP3, {2.2, 1.8, 2.2});
  EXPECT_EQ(Photo::MatchProfile(mixed, *Decode(mixed)), nullptr);
}

TEST(ProfileSpace, ChoosesTheSmallestSpaceThatHoldsTheColours) {
  EXPECT_EQ(Photo::ChooseWideSpace(*Decode(MakeProfile(kSmall, {1.8, 1.8, 1.8})), 3),
            TmEngine::eColorSpaceID_sRGB);
  EXPECT_EQ(Photo::ChooseWideSpace(*Decode(MakeProfile(kDisplayP3, {1.8, 1.8, 1.8})), 3),
            TmEngine::eColorSpaceID_ProPhotoRGB);
}

}  // namespace
