#pragma once

#include <string>

#include "engine/image/ImageRows.h"
#include "photo/picture/Picture.h"

namespace Photo {

/// Whether a picture's XMP says that it is a whole panorama of 360 degrees: GPano's projection is
/// equirectangular, and no part of its width was cropped away.
bool StatesPanorama(const std::string& pXmp);

/// Whether left and right edges of a picture look as if they met: it is twice as wide as high, within a per
/// cent, and the sum of three findings is above a limit:
/// - at four scales, cells of 1, 2, 4 and 8 units, how often the step across the edges is one that is usual
///   beside them (sSeam::fShare); too seldom at a coarse scale refuses on its own;
/// - 1.2 times the correlation of the two edges, at the three finest scales;
/// - less a tenth of the binary logarithm of their step in units of one between neighbours inside, where it
///   is larger: the median over the rows of |difference of the logarithms of luminance|, of the median pair.
/// Where most neighbours inside do not differ at all, the edges must not either. A unit is a pixel; in
/// pictures wider than 1024 pixels, a 1024th of the width. Weights and limit were found with eleven
/// panoramas, each rolled to all its columns, and thousands of crops.
bool EdgesMeet(const sPicture& pPicture);

/// Whether a picture of this size can be a panorama by its edges.
bool HasPanoramaShape(int pWidth, int pHeight);

/// The column at which the work on a panorama begins. The engine's grid of cells starts at the first column,
/// so where that lies is seen in the result. To make that the same place of the scene however the panorama is
/// rolled, it is found by the picture itself: there the sequence of the columns' luminances, read around, is
/// the least one in the order of a dictionary.
int FindStartColumn(const sPicture& pPicture);

/// A panorama as it looks rolled to the left, so that column pStart comes first. The image stays the
/// caller's.
class cRolledSource : public TmEngine::cRowSource {
 public:
  cRolledSource(const TmEngine::cBitmapXYZ32& pImage, int pStart)
      : cRowSource(pImage.GetWidth(), pImage.GetHeight()), fImage(pImage), fStart(pStart) {}

  void ReadRun(int pY, int pX, int pCount, float* pToX, float* pToY, float* pToZ) const override;

 private:
  TmEngine::cImageSource fImage;
  int fStart;
};

}  // namespace Photo
