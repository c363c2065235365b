#pragma once

#include <optional>
#include <string>
#include <vector>

#include "photo/light/LinearLight.h"

namespace Photo {

/// How light is encoded in samples.
enum class eEncoding { kSRGB, kPower, kPQ, kHLG };

/// The colours of a picture that states them by numbers, not by a profile. The default is sRGB.
struct sCicpColors {
  sPrimaries fPrimaries;
  eEncoding fEncoding = eEncoding::kSRGB;
  double fPower = 1.0;  ///< For kPower: light is the sample to this power. 1 is linear.
  std::string fName = "sRGB";

  bool AreSRGB() const {
    return fEncoding == eEncoding::kSRGB && NamePrimaries(fPrimaries) == NamePrimaries({});
  }
  /// Whether full samples are brighter than the white of paper.
  bool GoesBeyondWhite() const { return fEncoding == eEncoding::kPQ || fEncoding == eEncoding::kHLG; }
};

/// What two code points of ITU-T H.273 stand for; none where they are not known here, which leaves a warning
/// that ends with pInstead.
std::optional<sCicpColors> FindCodedColors(int pPrimaries, int pTransfer, const std::string& pInstead,
                                           std::vector<std::string>& pWarnings);

/// The linear light of an encoded sample in [0, 1]. 1 is the white of paper: it is reached at 203 candela a
/// square metre of PQ, and at 75 % of HLG, and lights go beyond.
float DecodeSample(const sCicpColors& pColors, float pSample);

}  // namespace Photo
