#pragma once

#include "engine/image/cBitmapLDR.h"

namespace Photo {

/// How far two pictures are apart, in 8-bit codes; samples of 16 bits count as 1/257 of their own.
struct sPictureDifference {
  struct sExtent {
    double fLargest = 0.0;
    double fMean = 0.0;
  };
  sExtent fChannels[3];  ///< Red, green, blue.
  sExtent fAll;
  double fQuantile99 = 0.0;      ///< 99 % of all samples differ by this much or less.
  double fDifferentShare = 0.0;  ///< Share of pixels with any difference, 0 to 1.
  int fLargestX = 0;             ///< Where fAll.fLargest is first met.
  int fLargestY = 0;
};

/// Red, green and blue of a pixel, in 16 bits.
struct sPixel16 {
  int fSamples[3];
};
sPixel16 GetPixel16(TmEngine::cBitmapLDR& pPicture, int pX, int pY);

/// Both pictures have the same size. Colour spaces are not looked at.
sPictureDifference ComparePictures(TmEngine::cBitmapLDR& pA, TmEngine::cBitmapLDR& pB);

}  // namespace Photo
