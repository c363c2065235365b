#pragma once

#include <optional>

#include "cli/Picture.h"
#include "engine/cVector.h"

namespace Cli {

/// Where the three primaries and the white of an RGB picture lie (CIE x, y). The default is sRGB.
struct sPrimaries {
  TmEngine::cVector2 fRed{0.64f, 0.33f};
  TmEngine::cVector2 fGreen{0.3f, 0.6f};
  TmEngine::cVector2 fBlue{0.15f, 0.06f};
  TmEngine::cVector2 fWhite{0.31271f, 0.32902f};
};

/// Makes every sample finite: NaN and -infinity become 0, +infinity the largest finite sample (1 where none
/// is above 0), and magnitudes beyond any light are cut. Leaves a warning with the count of such pixels.
void RepairSamples(sPicture& pPicture);

/// Repairs the linear RGB samples of pPicture and turns them into XYZ. pStated: the primaries that the file
/// states; where there are none, or where they span no colour space (which leaves a warning), sRGB is taken.
/// Colours beyond those of real surfaces are brought to the border of that range.
void LinearToXYZ(sPicture& pPicture, const std::optional<sPrimaries>& pStated);

/// Copies each pixel's first sample to the other two.
void SpreadGrey(const sPicture& pPicture);

}  // namespace Cli
