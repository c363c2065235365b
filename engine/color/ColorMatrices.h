#pragma once

#include "engine/math/cMatrix33.h"
#include "engine/math/cVector.h"

namespace TmEngine {

/// CIE (x, y) of an RGB space's primaries and white.
struct sChromaticities {
  cVector2 fRed, fGreen, fBlue, fWhite;
};

// The derivations of an RGB space's matrices, all in double. Chromaticities that span no space are not
// detected: where a matrix has no inverse, zeros take its place.

/// Linear RGB to XYZ relative to the space's own white, which (1, 1, 1) maps to with Y = 1.
cMatrix33d DeriveRGBToXYZNative(const sChromaticities& pSpace);

/// Linear RGB to D50-relative XYZ: the native matrix, carried to D50 with the Bradford transform unless the
/// white is D50 itself.
cMatrix33d DeriveRGBToXYZD50(const sChromaticities& pSpace);

/// The inverse, or zeros where there is none.
cMatrix33d InverseOf(const cMatrix33d& pMatrix);

/// The chromaticities behind a D50-relative RGB-to-XYZ matrix (columns are the colorants) and the XYZ of the
/// media white that the colorants were carried from.
sChromaticities ChromaticitiesOf(const cMatrix33& pColorants, const cVector3& pMediaWhite);

}  // namespace TmEngine
