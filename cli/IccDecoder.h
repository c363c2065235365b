#pragma once

#include <cstddef>
#include <memory>

namespace Cli {

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

  /// The sample value that the library takes for full colour: it counts inks in per cent.
  static float GetFullSample(int pColours) { return pColours == 4 ? 100.0f : 1.0f; }

 private:
  explicit cIccDecoder(void* pTransform) : fTransform(pTransform) {}

  void* fTransform;
};

}  // namespace Cli
