#include "engine/color/cColorSpace.h"

#include <memory>

#include "engine/base/TmCheck.h"
#include "engine/color/ColorMatrices.h"
#include "engine/color/IccProfiles.h"
#include "engine/color/cTransfer.h"

namespace TmEngine {

static constexpr char kSourceFile[] = ".\\cColorSpace.cpp";

namespace {

constexpr float kD50x = 0.34567f;
constexpr float kD50y = 0.3585f;
constexpr cVector2 kD50(kD50x, kD50y);
constexpr cVector2 kD65(0.31271f, 0.32902f);

cTransfer* CloneOrNull(const cTransfer* pTransfer) {
  return pTransfer != nullptr ? pTransfer->Clone() : nullptr;
}

}  // namespace

cColorSpace* cColorSpace::FromID(eColorSpaceID pID) {
  static constexpr char kSignature[] =
      "class TmEngine::cColorSpace *__cdecl TmEngine::cColorSpace::FromID(enum TmEngine::eColorSpaceID)";
  TM_CHECK(IsValidID(pID), cArgumentException, "Argument pID refers to an unknown color space.");
  if (pID == eColorSpaceID_sRGB) return new cColorSpace_sRGB;
  if (pID == eColorSpaceID_AdobeRGB98) return new cColorSpace_AdobeRGB98;
  return new cColorSpace_ProPhotoRGB;
}

bool cColorSpace::IsValidID(eColorSpaceID pID) {
  return pID >= eColorSpaceID_sRGB && pID <= eColorSpaceID_ProPhotoRGB;
}

cColorSpace::cColorSpace(cVector2 pRed, cVector2 pGreen, cVector2 pBlue, cVector2 pWhite) {
  SetChromaticities({pRed, pGreen, pBlue, pWhite});
}

cColorSpace::~cColorSpace() {
  delete fToLinear;
  fToLinear = nullptr;
  delete fFromLinear;
  fFromLinear = nullptr;
}

void cColorSpace::SetChromaticities(const sChromaticities& pSpace) {
  fRed = pSpace.fRed;
  fGreen = pSpace.fGreen;
  fBlue = pSpace.fBlue;
  fWhite = pSpace.fWhite;
  // Each inverse is taken before its matrix is rounded.
  const cMatrix33d native = DeriveRGBToXYZNative(pSpace);
  fRGBToXYZNative = native.ToFloat();
  fXYZToRGBNative = InverseOf(native).ToFloat();
  const cMatrix33d adapted = DeriveRGBToXYZD50(pSpace);
  fRGBToXYZ = adapted.ToFloat();
  fXYZToRGB = InverseOf(adapted).ToFloat();
}

cVector2 cColorSpace::GetWhitePoint() const {
  return fWhite;
}

bool cColorSpace::IsCustom() const {
  return false;
}

cVector2 cColorSpace::GetWhitePointD50() {
  return kD50;
}

cVector2 cColorSpace::GetWhitePointD65() {
  return kD65;
}

void cColorSpace::GetWhitePointD50(float& pX, float& pY) {
  pX = kD50x;
  pY = kD50y;
}

cMatrix33 cColorSpace::BuildRGBToXYZNative(float pRedX, float pRedY, float pGreenX, float pGreenY,
                                           float pBlueX, float pBlueY, float pWhiteX, float pWhiteY) {
  return BuildRGBToXYZNatived(pRedX, pRedY, pGreenX, pGreenY, pBlueX, pBlueY, pWhiteX, pWhiteY).ToFloat();
}

cMatrix33 cColorSpace::BuildXYZToRGBNative(float pRedX, float pRedY, float pGreenX, float pGreenY,
                                           float pBlueX, float pBlueY, float pWhiteX, float pWhiteY) {
  return InverseOf(BuildRGBToXYZNatived(pRedX, pRedY, pGreenX, pGreenY, pBlueX, pBlueY, pWhiteX, pWhiteY))
      .ToFloat();
}

cMatrix33 cColorSpace::BuildRGBToXYZ(float pRedX, float pRedY, float pGreenX, float pGreenY, float pBlueX,
                                     float pBlueY, float pWhiteX, float pWhiteY) {
  return BuildRGBToXYZd(pRedX, pRedY, pGreenX, pGreenY, pBlueX, pBlueY, pWhiteX, pWhiteY).ToFloat();
}

cMatrix33 cColorSpace::BuildXYZToRGB(float pRedX, float pRedY, float pGreenX, float pGreenY, float pBlueX,
                                     float pBlueY, float pWhiteX, float pWhiteY) {
  return InverseOf(BuildRGBToXYZd(pRedX, pRedY, pGreenX, pGreenY, pBlueX, pBlueY, pWhiteX, pWhiteY))
      .ToFloat();
}

cMatrix33d cColorSpace::BuildRGBToXYZNatived(float pRedX, float pRedY, float pGreenX, float pGreenY,
                                             float pBlueX, float pBlueY, float pWhiteX, float pWhiteY) {
  return DeriveRGBToXYZNative({{pRedX, pRedY}, {pGreenX, pGreenY}, {pBlueX, pBlueY}, {pWhiteX, pWhiteY}});
}

cMatrix33d cColorSpace::BuildRGBToXYZd(float pRedX, float pRedY, float pGreenX, float pGreenY, float pBlueX,
                                       float pBlueY, float pWhiteX, float pWhiteY) {
  return DeriveRGBToXYZD50({{pRedX, pRedY}, {pGreenX, pGreenY}, {pBlueX, pBlueY}, {pWhiteX, pWhiteY}});
}

// In the constructors below, the base's destructor frees the first transfer if there is no memory for the
// second.

cColorSpace_sRGB::cColorSpace_sRGB() : cColorSpace({0.64f, 0.33f}, {0.3f, 0.6f}, {0.15f, 0.06f}, kD65) {
  fToLinear = new cTransfer_sRGBToLinear;
  fFromLinear = new cTransferLinearTo_sRGB;
}

cColorSpace_sRGB::~cColorSpace_sRGB() = default;

cColorSpace* cColorSpace_sRGB::Clone() const {
  return new cColorSpace_sRGB;
}

const char* cColorSpace_sRGB::GetName() const {
  return "sRGB IEC61966-2.1";
}

sIccProfile cColorSpace_sRGB::GetIccProfile() {
  return {kIccProfile_sRGB, sizeof(kIccProfile_sRGB)};
}

cColorSpace_AdobeRGB98::cColorSpace_AdobeRGB98()
    : cColorSpace({0.64f, 0.33f}, {0.21f, 0.71f}, {0.15f, 0.06f}, kD65) {
  fToLinear = new cTransferGamma(0.45454547f);
  fFromLinear = new cTransferGamma(2.2f);
}

cColorSpace_AdobeRGB98::~cColorSpace_AdobeRGB98() = default;

cColorSpace* cColorSpace_AdobeRGB98::Clone() const {
  return new cColorSpace_AdobeRGB98;
}

const char* cColorSpace_AdobeRGB98::GetName() const {
  return "Adobe RGB (1998)";
}

sIccProfile cColorSpace_AdobeRGB98::GetIccProfile() {
  return {kIccProfile_AdobeRGB98, sizeof(kIccProfile_AdobeRGB98)};
}

cColorSpace_ProPhotoRGB::cColorSpace_ProPhotoRGB()
    : cColorSpace({0.7347f, 0.2653f}, {0.1596f, 0.8404f}, {0.0366f, 0.0001f}, kD50) {
  fToLinear = new cTransferGamma(0.5555556f);
  fFromLinear = new cTransferGamma(1.8f);
}

cColorSpace_ProPhotoRGB::~cColorSpace_ProPhotoRGB() = default;

cColorSpace* cColorSpace_ProPhotoRGB::Clone() const {
  return new cColorSpace_ProPhotoRGB;
}

const char* cColorSpace_ProPhotoRGB::GetName() const {
  return "ProPhoto RGB";
}

sIccProfile cColorSpace_ProPhotoRGB::GetIccProfile() {
  return {kIccProfile_ProPhotoRGB, sizeof(kIccProfile_ProPhotoRGB)};
}

cColorSpace_GenericRGB::cColorSpace_GenericRGB() = default;

cColorSpace_GenericRGB::cColorSpace_GenericRGB(const cVector2& pRed, const cVector2& pGreen,
                                               const cVector2& pBlue, const cVector2& pWhite, float pGamma)
    : cColorSpace(pRed, pGreen, pBlue, pWhite) {
  fToLinear = new cTransferGamma(1.0f / pGamma);
  fFromLinear = new cTransferGamma(pGamma);
}

cColorSpace_GenericRGB::cColorSpace_GenericRGB(const cMatrix33& pColorants, const cVector3& pMediaWhite,
                                               unsigned short* pToLinearTable, int pToLinearSize,
                                               unsigned short* pFromLinearTable, int pFromLinearSize) {
  SetChromaticities(ChromaticitiesOf(pColorants, pMediaWhite));
  fToLinear = new cTransfer_Table(pToLinearTable, pToLinearSize);
  fFromLinear = new cTransfer_Table(pFromLinearTable, pFromLinearSize);
}

cColorSpace_GenericRGB::~cColorSpace_GenericRGB() = default;

cColorSpace* cColorSpace_GenericRGB::Clone() const {
  auto clone = std::make_unique<cColorSpace_GenericRGB>();
  clone->fRed = fRed;
  clone->fGreen = fGreen;
  clone->fBlue = fBlue;
  clone->fWhite = fWhite;
  clone->fRGBToXYZNative = fRGBToXYZNative;
  clone->fXYZToRGBNative = fXYZToRGBNative;
  clone->fRGBToXYZ = fRGBToXYZ;
  clone->fXYZToRGB = fXYZToRGB;
  clone->fToLinear = CloneOrNull(fToLinear);
  clone->fFromLinear = CloneOrNull(fFromLinear);
  return clone.release();
}

const char* cColorSpace_GenericRGB::GetName() const {
  return "Generic RGB";
}

}  // namespace TmEngine
