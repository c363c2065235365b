#pragma once

#include <OpenEXR/ImfMultiPartInputFile.h>

#include <string>
#include <vector>

#include "photo/picture/PictureChoice.h"

namespace Photo {

enum class eExrColours { kNone, kRgb, kGrey, kChroma };

/// Where the colours of an OpenEXR picture are.
struct sExrSource {
  int fPart = 0;
  std::string fLayer;
  eExrColours fColours = eExrColours::kNone;

  /// The full name of a channel: "R", or "layer.R".
  std::string NameOf(const std::string& pChannel) const {
    return fLayer.empty() ? pChannel : fLayer + "." + pChannel;
  }
};

std::vector<sPicturePart> ListExrParts(const Imf::MultiPartInputFile& pFrom);

/// What pChoice asks for: of what it leaves open, the first part with colours. Throws cFailure, with the
/// parts and layers that there are.
sExrSource ChooseExrSource(const Imf::MultiPartInputFile& pFrom, const sPictureChoice& pChoice);

/// "left out: part 0 (depth), layer diffuse; ..."; "" when nothing is left out but single channels.
std::string DescribeLeftOut(const std::vector<sPicturePart>& pParts, const sExrSource& pUsed);

}  // namespace Photo
