#include <gtest/gtest.h>
#include <lcms2.h>

#include <memory>
#include <string>

#include "engine/color/cColorSpace.h"
#include "engine/color/cTransfer.h"

namespace TmEngine {
namespace {

void ReportError(cmsContext, cmsUInt32Number, const char* pText) {
  ADD_FAILURE() << "Little CMS: " << pText;
}

struct sProfile {
  cmsHPROFILE fHandle;
  ~sProfile() { cmsCloseProfile(fHandle); }
};

std::string Text(const sProfile& pProfile, cmsInfoType pInfo) {
  char text[200] = {};
  cmsGetProfileInfoASCII(pProfile.fHandle, pInfo, "en", "US", text, sizeof(text));
  return text;
}

void ExpectHeader(const sIccProfile& pBlob, int pSize, const std::string& pCmm) {
  ASSERT_EQ(pBlob.fSize, pSize);
  const unsigned char* d = pBlob.fData;
  EXPECT_EQ((d[0] << 24) + (d[1] << 16) + (d[2] << 8) + d[3], pSize);
  EXPECT_EQ(d[8], 2);  // version
  EXPECT_EQ(std::string(d + 4, d + 8), pCmm);
  EXPECT_EQ(std::string(d + 12, d + 24), "mntrRGB XYZ ");
}

void ExpectTags(const sProfile& pProfile, const cColorSpace& pSpace) {
  for (const char* name : {"desc", "cprt", "wtpt", "rXYZ", "gXYZ", "bXYZ", "rTRC", "gTRC", "bTRC"}) {
    const int tag = (name[0] << 24) + (name[1] << 16) + (name[2] << 8) + name[3];
    ASSERT_NE(cmsReadTag(pProfile.fHandle, static_cast<cmsTagSignature>(tag)), nullptr) << name;
  }
  EXPECT_EQ(Text(pProfile, cmsInfoDescription), pSpace.GetName());
  EXPECT_EQ(Text(pProfile, cmsInfoCopyright), "Copyright Quorvane contributors, CC0-1.0");
  const auto* white = static_cast<const cmsCIEXYZ*>(cmsReadTag(pProfile.fHandle, cmsSigMediaWhitePointTag));
  const cVector3 expected = pSpace.GetRGBToXYZNative() * cVector3(1.0f, 1.0f, 1.0f);
  EXPECT_NEAR(white->X, expected[0], 1e-5);
  EXPECT_NEAR(white->Z, expected[2], 1e-5);
}

void ExpectTransform(const sProfile& pProfile, const cColorSpace& pSpace) {
  const sProfile xyzProfile{cmsCreateXYZProfile()};
  const cmsHTRANSFORM transform =
      cmsCreateTransform(pProfile.fHandle, TYPE_RGB_DBL, xyzProfile.fHandle, TYPE_XYZ_DBL,
                         INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE);
  ASSERT_NE(transform, nullptr);
  for (int i = 0; i < 17 * 17 * 17; ++i) {
    const double rgb[] = {i % 17 / 16.0, i / 17 % 17 / 16.0, i / 289 / 16.0};
    double xyz[3];
    cmsDoTransform(transform, rgb, xyz, 1);
    cVector3 linear;
    for (int c = 0; c < 3; ++c) linear[c] = pSpace.GetToLinear()->Evaluate(static_cast<float>(rgb[c]));
    const cVector3 expected = pSpace.GetRGBToXYZ() * linear;
    for (int c = 0; c < 3; ++c) EXPECT_NEAR(xyz[c], expected[c], 1e-3) << "colour " << i;
  }
  cmsDeleteTransform(transform);
}

TEST(IccProfile, IsWholeAndTransformsAsTheEngineDoes) {
  cmsSetLogErrorHandler(ReportError);
  const struct {
    eColorSpaceID fID;
    sIccProfile fBlob;
    int fSize;
    const char* fCmm;
  } cases[] = {{eColorSpaceID_sRGB, cColorSpace_sRGB::GetIccProfile(), 3144, "Lino"},
               {eColorSpaceID_AdobeRGB98, cColorSpace_AdobeRGB98::GetIccProfile(), 560, "ADBE"},
               {eColorSpaceID_ProPhotoRGB, cColorSpace_ProPhotoRGB::GetIccProfile(), 940, "KCMS"}};
  for (const auto& row : cases) {
    SCOPED_TRACE(row.fCmm);
    ExpectHeader(row.fBlob, row.fSize, row.fCmm);
    const sProfile profile{cmsOpenProfileFromMem(row.fBlob.fData, static_cast<cmsUInt32Number>(row.fSize))};
    ASSERT_NE(profile.fHandle, nullptr);
    const std::unique_ptr<cColorSpace> space(cColorSpace::FromID(row.fID));
    ExpectTags(profile, *space);
    ExpectTransform(profile, *space);
  }
}

}  // namespace
}  // namespace TmEngine
