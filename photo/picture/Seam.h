#pragma once

#include "photo/picture/Picture.h"

namespace Photo {

/// How a picture looks around the line where its last column meets its first.
struct sSeam {
  /// Share of the rows in which the step across the line is at most the largest of the three steps before and
  /// the three after it. About 6 of 7 where the picture continues, however lively it is.
  double fShare = 0.0;
  /// Between the columns on both sides, of the logarithms of luminance; 0 where one of them is constant.
  double fCorrelation = 0.0;
};

/// Looks at square cells of pSide pixels, four columns of them on each side. The picture is at least as large
/// as 8 x 1 cells.
sSeam LookAtSeam(const sPicture& pPicture, int pSide);

}  // namespace Photo
