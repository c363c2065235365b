#include "photo/picture/PictureDifference.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace Photo {
namespace {

constexpr int kCodes = 65536;
constexpr double kPerCode = 257.0;

/// What is counted on the way, in 16-bit codes.
struct sSums {
  std::int64_t fSum[3] = {};
  int fLargest[3] = {};
  int fLargestOfAll = 0;
  std::int64_t fDifferent = 0;
  std::vector<std::int64_t> fCounts =
      std::vector<std::int64_t>(kCodes);  ///< How many samples have each difference.

  /// Returns the largest difference of the pixel's samples.
  int Add(const sPixel16& pA, const sPixel16& pB) {
    int largest = 0;
    for (int i = 0; i < 3; ++i) {
      const int difference = std::abs(pA.fSamples[i] - pB.fSamples[i]);
      fSum[i] += difference;
      fLargest[i] = std::max(fLargest[i], difference);
      ++fCounts[static_cast<std::size_t>(difference)];
      largest = std::max(largest, difference);
    }
    fDifferent += largest > 0 ? 1 : 0;
    return largest;
  }

  int Quantile(double pShare, double pSamples) const {
    double below = 0.0;
    for (int code = 0; code < kCodes; ++code) {
      below += static_cast<double>(fCounts[static_cast<std::size_t>(code)]);
      if (below >= pShare * pSamples) return code;
    }
    return kCodes - 1;
  }
};

}  // namespace

sPixel16 GetPixel16(TmEngine::cBitmapLDR& pPicture, int pX, int pY) {
  const unsigned char* const row = pPicture.GetBitmapData() + std::ptrdiff_t{pPicture.GetStride()} * pY;
  const std::ptrdiff_t at = std::ptrdiff_t{3} * pX;
  if (pPicture.GetBitDepth() == 8) return {{row[at + 2] * 257, row[at + 1] * 257, row[at] * 257}};
  const auto* const samples = reinterpret_cast<const unsigned short*>(row);
  return {{samples[at + 2], samples[at + 1], samples[at]}};
}

sPictureDifference ComparePictures(TmEngine::cBitmapLDR& pA, TmEngine::cBitmapLDR& pB) {
  sPictureDifference difference;
  sSums sums;
  for (int y = 0; y < pA.GetHeight(); ++y) {
    for (int x = 0; x < pA.GetWidth(); ++x) {
      const int largest = sums.Add(GetPixel16(pA, x, y), GetPixel16(pB, x, y));
      if (largest <= sums.fLargestOfAll) continue;
      sums.fLargestOfAll = largest;
      difference.fLargestX = x;
      difference.fLargestY = y;
    }
  }
  const double pixels = static_cast<double>(pA.GetWidth()) * pA.GetHeight();
  for (int i = 0; i < 3; ++i) {
    difference.fChannels[i] = {sums.fLargest[i] / kPerCode,
                               static_cast<double>(sums.fSum[i]) / pixels / kPerCode};
    difference.fAll.fMean += difference.fChannels[i].fMean / 3.0;
  }
  difference.fAll.fLargest = sums.fLargestOfAll / kPerCode;
  difference.fQuantile99 = sums.Quantile(0.99, 3.0 * pixels) / kPerCode;
  difference.fDifferentShare = static_cast<double>(sums.fDifferent) / pixels;
  return difference;
}

}  // namespace Photo
