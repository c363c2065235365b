#pragma once

#include <optional>
#include <string>
#include <vector>

#include "engine/math/cMatrix33.h"
#include "engine/math/cVector.h"

namespace Photo {

/// Where the three primaries and the white of an RGB picture lie (CIE x, y). The default is sRGB.
struct sPrimaries {
  TmEngine::cVector2 fRed{0.64f, 0.33f};
  TmEngine::cVector2 fGreen{0.3f, 0.6f};
  TmEngine::cVector2 fBlue{0.15f, 0.06f};
  TmEngine::cVector2 fWhite{0.31271f, 0.32902f};
};

/// Whether the white lies well inside the triangle of the primaries: then every matrix exists.
bool SpanColorSpace(const sPrimaries& pPrimaries);
/// The primaries of a name that NamePrimaries gives; null for others.
const sPrimaries* FindPrimaries(const std::string& pName);
/// "Display P3 primaries"; in other words for those that have no name.
std::string NamePrimaries(const sPrimaries& pPrimaries);

/// What linear samples mean.
struct sLinearLight {
  std::optional<TmEngine::cMatrix33> fToXYZ;  ///< From RGB to D50-relative XYZ; none for samples in XYZ.
  bool fFitsGamut = false;  ///< Whether colours beyond those of real surfaces are brought to their border.
  std::string fColorSpace;  ///< In words.
  bool fIsValid = false;    ///< No sample is negative, an outlier, infinite or NaN.
};

/// Linear RGB with the primaries that a file states; where there are none, or where they span no colour space
/// (which leaves a warning), sRGB's are taken.
sLinearLight MakeLinearLight(const std::optional<sPrimaries>& pStated, std::vector<std::string>& pWarnings);

/// RGB of Rec. 2020, which holds the colours of real surfaces.
struct sSurfaceColors {
  TmEngine::cMatrix33 fToRGB;  ///< From and to D50-relative XYZ.
  TmEngine::cMatrix33 fToXYZ;
};
sSurfaceColors GetSurfaceColors();

}  // namespace Photo
