#pragma once

#include "engine/math/cMatrix33.h"
#include "engine/math/cVector.h"

namespace TmEngine {

class cTransfer;
struct sChromaticities;

/// The named colour spaces. The type is fixed, so that an id out of range can be passed and rejected.
enum eColorSpaceID : int {
  eColorSpaceID_sRGB = 0,
  eColorSpaceID_AdobeRGB98 = 1,
  eColorSpaceID_ProPhotoRGB = 2,
};

/// A read-only ICC profile (version 2, display class, RGB to XYZ) in static memory.
struct sIccProfile {
  const unsigned char* fData;
  int fSize;  ///< Bytes.
};

/// An RGB colour space: chromaticities of its primaries and white, two transfers and four matrices between
/// linear RGB (1.0 is white) and CIE XYZ (white has Y = 1), relative to its own white and adapted to D50 with
/// the Bradford transform (ICC.1:2010, annex E). Immutable after construction; owns its transfers.
class cColorSpace {
 public:
  /// A new space, owned by the caller. Throws cArgumentException for an unknown id.
  static cColorSpace* FromID(eColorSpaceID pID);
  static bool IsValidID(eColorSpaceID pID);

  cColorSpace(const cColorSpace&) = delete;
  cColorSpace& operator=(const cColorSpace&) = delete;
  virtual ~cColorSpace();
  virtual cColorSpace* Clone() const = 0;  ///< A new object of the same class, owned by the caller.
  virtual cVector2 GetWhitePoint() const;
  virtual bool IsCustom() const;
  virtual const char* GetName() const = 0;

  cVector2 GetRedPrimary() const { return fRed; }
  cVector2 GetGreenPrimary() const { return fGreen; }
  cVector2 GetBluePrimary() const { return fBlue; }
  cTransfer* GetToLinear() const { return fToLinear; }      ///< Encoded to linear; stays owned here.
  cTransfer* GetFromLinear() const { return fFromLinear; }  ///< Linear to encoded; stays owned here.
  cMatrix33 GetRGBToXYZNative() const { return fRGBToXYZNative; }
  cMatrix33 GetXYZToRGBNative() const { return fXYZToRGBNative; }
  cMatrix33 GetRGBToXYZ() const { return fRGBToXYZ; }  ///< To D50-relative XYZ.
  cMatrix33 GetXYZToRGB() const { return fXYZToRGB; }  ///< From D50-relative XYZ.

  static cVector2 GetWhitePointD50();
  static cVector2 GetWhitePointD65();
  static void GetWhitePointD50(float& pX, float& pY);

  // Matrices from chromaticities, derived in double and rounded once.
  static cMatrix33 BuildRGBToXYZNative(float pRedX, float pRedY, float pGreenX, float pGreenY, float pBlueX,
                                       float pBlueY, float pWhiteX, float pWhiteY);
  static cMatrix33 BuildXYZToRGBNative(float pRedX, float pRedY, float pGreenX, float pGreenY, float pBlueX,
                                       float pBlueY, float pWhiteX, float pWhiteY);
  static cMatrix33 BuildRGBToXYZ(float pRedX, float pRedY, float pGreenX, float pGreenY, float pBlueX,
                                 float pBlueY, float pWhiteX, float pWhiteY);
  static cMatrix33 BuildXYZToRGB(float pRedX, float pRedY, float pGreenX, float pGreenY, float pBlueX,
                                 float pBlueY, float pWhiteX, float pWhiteY);
  static cMatrix33d BuildRGBToXYZNatived(float pRedX, float pRedY, float pGreenX, float pGreenY, float pBlueX,
                                         float pBlueY, float pWhiteX, float pWhiteY);
  static cMatrix33d BuildRGBToXYZd(float pRedX, float pRedY, float pGreenX, float pGreenY, float pBlueX,
                                   float pBlueY, float pWhiteX, float pWhiteY);

 protected:
  cColorSpace() = default;  // for constructors that set the chromaticities, and clones that fill every field
  cColorSpace(cVector2 pRed, cVector2 pGreen, cVector2 pBlue, cVector2 pWhite);

  void SetChromaticities(const sChromaticities& pSpace);  // and derives the matrices

  cVector2 fRed, fGreen, fBlue, fWhite;
  cTransfer* fToLinear = nullptr;
  cTransfer* fFromLinear = nullptr;
  cMatrix33 fRGBToXYZNative, fXYZToRGBNative, fRGBToXYZ, fXYZToRGB;
};

class cColorSpace_sRGB : public cColorSpace {
 public:
  cColorSpace_sRGB();
  ~cColorSpace_sRGB() override;
  cColorSpace* Clone() const override;
  const char* GetName() const override;
  static sIccProfile GetIccProfile();  ///< 3144 bytes.
};

class cColorSpace_AdobeRGB98 : public cColorSpace {
 public:
  cColorSpace_AdobeRGB98();
  ~cColorSpace_AdobeRGB98() override;
  cColorSpace* Clone() const override;
  const char* GetName() const override;
  static sIccProfile GetIccProfile();  ///< 560 bytes.
};

class cColorSpace_ProPhotoRGB : public cColorSpace {
 public:
  cColorSpace_ProPhotoRGB();
  ~cColorSpace_ProPhotoRGB() override;
  cColorSpace* Clone() const override;
  const char* GetName() const override;
  static sIccProfile GetIccProfile();  ///< 940 bytes.
};

/// A space of any primaries, from chromaticities and a gamma or from what an ICC profile holds.
class cColorSpace_GenericRGB : public cColorSpace {
 public:
  /// Empty, without transfers.
  cColorSpace_GenericRGB();
  /// pGamma encodes: from-linear is x^(1/gamma), to-linear x^gamma.
  cColorSpace_GenericRGB(const cVector2& pRed, const cVector2& pGreen, const cVector2& pBlue,
                         const cVector2& pWhite, float pGamma);
  /// From a D50-relative RGB-to-XYZ colorant matrix, the media white (X, Y, Z) and two tone tables of
  /// unsigned 16-bit entries (see cTransfer_Table, whose exceptions pass on).
  cColorSpace_GenericRGB(const cMatrix33& pColorants, const cVector3& pMediaWhite,
                         unsigned short* pToLinearTable, int pToLinearSize, unsigned short* pFromLinearTable,
                         int pFromLinearSize);
  ~cColorSpace_GenericRGB() override;
  cColorSpace* Clone() const override;
  const char* GetName() const override;
};

}  // namespace TmEngine
