#pragma once

#include <cstdint>
#include <vector>

#include "photo/picture/Picture.h"

namespace Photo {

/// How the luminance of a picture is distributed. Logarithms are decimal, of linear luminance with 1 for the
/// file's white. Fully transparent pixels do not count, but for premultiplied ones with light.
struct sPictureStatistics {
  static constexpr double kLowest = -40.0;  ///< Floats end there; the bins reach as far the other way.
  static constexpr int kBinsPerDecade = 100;

  std::int64_t fPixels = 0;  ///< Pixels that were looked at.
  std::int64_t fDark = 0;    ///< Those without positive luminance; no quantile counts them.
  double fLogMin = 0.0;      ///< Of positive luminances; 0 where there is none.
  double fLogMax = 0.0;
  double fLogMean = 0.0;
  std::vector<std::int64_t> fBins;  ///< Pixels per hundredth of a decade, from kLowest on; empty for none.

  /// Counts the pixels of pOther as well, as if both lay in one picture.
  void Merge(const sPictureStatistics& pOther);
  std::int64_t CountPositive() const { return fPixels - fDark; }
  /// The logarithm below which pShare (0 to 1) of the positive luminances lie, to a hundredth of a decade.
  double GetQuantile(double pShare) const;
  /// The share of the positive luminances above pLog.
  double GetShareAbove(double pLog) const;
  /// Pixels in each tenth of a decade from pFrom, a multiple of it, to the brightest.
  std::vector<std::int64_t> CountTenths(double pFrom) const;
  /// Decades from the 1 % to the 99.9 % quantile: what a picture holds without its outliers.
  double GetDynamicRange() const { return GetQuantile(0.999) - GetQuantile(0.01); }
};

/// Gathers them from rows as they pass.
class cLuminanceSampler {
 public:
  static cLuminanceSampler OfAll(int pWidth);
  /// A regular sample, which takes no time to speak of: each side is walked in steps that leave about 400
  /// pixels on it.
  static cLuminanceSampler OfPart(int pWidth, int pHeight);

  /// Row pY, XYZ. pAlpha: of a picture with alpha, else null.
  void TakeRow(int pY, const float* pRow, const std::uint16_t* pAlpha, bool pIsPremultiplied = false);
  /// Luminances alone.
  void Take(const float* pLuminance, int pCount);
  sPictureStatistics Get() const;

 private:
  cLuminanceSampler(int pWidth, int pStepX, int pStepY);

  int fWidth;
  int fStepX;
  int fStepY;
  sPictureStatistics fSum;  ///< Its mean is a sum until the end.
};

/// Looks at every pixel in one pass.
sPictureStatistics MeasurePicture(const sPicture& pPicture);
/// Looks at a regular sample of the pixels (see cLuminanceSampler::OfPart).
sPictureStatistics SamplePicture(const sPicture& pPicture);

}  // namespace Photo
