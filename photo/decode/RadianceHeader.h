#pragma once

#include <optional>
#include <string>

#include "photo/light/LinearLight.h"

namespace Photo {

/// What the text before the pixels of a Radiance file says about them.
struct sRadianceHeader {
  std::optional<sPrimaries> fPrimaries;  ///< Only where the file states them; XYZ's own for XYZE pixels.
  int fOrientation = 1;                  ///< As EXIF counts it: which way the rows and columns run.
  double fScale[3] = {1.0, 1.0, 1.0};    ///< What EXPOSURE and COLORCORR multiplied red, green, blue by.
};

/// Never fails: what is missing or damaged keeps its default, as does everything for files of other kinds.
sRadianceHeader ReadRadianceHeader(const std::string& pFile);

}  // namespace Photo
