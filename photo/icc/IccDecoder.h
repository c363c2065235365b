#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

#include "engine/math/cMatrix33.h"
#include "photo/icc/IccHandle.h"

namespace Photo {

/// Decodes samples through an ICC profile into D50-relative XYZ (relative colorimetric, so that the profile's
/// white has Y = 1), all in float: nothing is clipped to a gamut on the way.
class cIccDecoder {
 public:
  /// pColours: 1 grey, 3 RGB, 4 CMYK. Null when the profile is damaged or made for other colours.
  static std::unique_ptr<cIccDecoder> FromProfile(const void* pData, std::size_t pSize, int pColours);

  cIccDecoder(const cIccDecoder&) = delete;
  cIccDecoder& operator=(const cIccDecoder&) = delete;
  ~cIccDecoder();

  /// pFrom: pWidth pixels of samples in [0, 1]. pTo: pWidth XYZ triples.
  void ToXYZ(const float* pFrom, float* pTo, int pWidth) const;

  /// Where the profile is no more than a curve for each of red, green and blue, and a matrix: that matrix,
  /// from linear light to D50-relative XYZ.
  const std::optional<TmEngine::cMatrix33>& GetMatrix() const { return fMatrix; }
  /// Such a profile's linear light. Beyond 0 and 1, where profiles say nothing, the curve goes on: negative
  /// samples mirror the positive ones, and those above 1 follow the power that the curve ends with.
  float Linearise(int pChannel, float pSample) const;

  /// The profile's name for itself.
  const std::string& GetName() const { return fName; }

  /// The sample value that the library takes for full colour: it counts inks in per cent.
  static float GetFullSample(int pColours) { return pColours == 4 ? 100.0f : 1.0f; }

 private:
  struct sCurve {
    const cmsToneCurve* fCurve = nullptr;  ///< The profile's.
    bool fIsLinear = false;
    float fEndPower = 1.0f;
  };

  cIccDecoder(tIccHandle pProfile, void* pTransform);
  void FindMatrix();

  tIccHandle fProfile;
  void* fTransform;
  std::string fName;
  std::optional<TmEngine::cMatrix33> fMatrix;
  std::array<sCurve, 3> fCurves;
};

}  // namespace Photo
