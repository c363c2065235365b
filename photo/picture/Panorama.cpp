#include "photo/picture/Panorama.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

#include "photo/picture/Seam.h"

namespace Photo {
namespace {

/// The value of a property, as an attribute's or an element's text; empty where there is none.
std::string_view FindProperty(std::string_view pXmp, std::string_view pName) {
  const std::size_t at = pXmp.find(pName);
  if (at == std::string_view::npos) return {};
  const std::size_t start = pXmp.find_first_not_of(" =\"'>\t\r\n", at + pName.size());
  if (start == std::string_view::npos) return {};
  return pXmp.substr(start, pXmp.find_first_of(" \"'<\t\r\n", start) - start);
}

/// Rows enough for a median, evenly picked.
constexpr int kRows = 512;

int PickAt(int pIndex, int pCount, int pHeight) {
  return static_cast<int>((2 * std::int64_t{pIndex} + 1) * pHeight / (2 * std::int64_t{pCount}));
}

/// Logarithm of the mean luminance of pCount pixels of row pY, from column pX on.
double LogLuminance(const sPicture& pPicture, int pX, int pY, int pCount) {
  constexpr double kDarkest = 1e-6;
  const float* pixel = GetRow(pPicture, pY) + std::ptrdiff_t{3} * pX;
  double sum = 0.0;
  for (int i = 0; i < pCount; ++i, pixel += 3) sum += static_cast<double>(pixel[1]);
  return std::log(std::max(sum / pCount, kDarkest));
}

double TakeMedian(std::vector<double>& pValues) {
  const auto middle = pValues.begin() + static_cast<std::ptrdiff_t>(pValues.size() / 2);
  std::nth_element(pValues.begin(), middle, pValues.end());
  return *middle;
}

/// How much the pCount columns from pA on differ from those from pB on.
double CompareColumns(const sPicture& pPicture, int pA, int pB, int pCount) {
  const int height = pPicture.fBitmap->GetHeight();
  std::vector<double> differences(static_cast<std::size_t>(std::min(height, kRows)));
  for (std::size_t i = 0; i < differences.size(); ++i) {
    const int y = PickAt(static_cast<int>(i), static_cast<int>(differences.size()), height);
    differences[i] = std::fabs(LogLuminance(pPicture, pA, y, pCount) - LogLuminance(pPicture, pB, y, pCount));
  }
  return TakeMedian(differences);
}

/// The median step between neighbours inside. pCount columns count as one.
double MeasureUsualStep(const sPicture& pPicture, int pCount) {
  constexpr int kPairs = 64;
  std::vector<double> steps;
  for (int i = 0; i < kPairs; ++i) {
    const int x = PickAt(i, kPairs, pPicture.fBitmap->GetWidth() - 2 * pCount + 1);
    steps.push_back(CompareColumns(pPicture, x, x + pCount, pCount));
  }
  return TakeMedian(steps);
}

/// The columns' luminances.
std::vector<double> SumColumns(const sPicture& pPicture) {
  const int height = pPicture.fBitmap->GetHeight();
  const int rows = std::min(height, kRows);
  std::vector<double> sums(static_cast<std::size_t>(pPicture.fBitmap->GetWidth()));
  for (int i = 0; i < rows; ++i) {
    const float* pixel = GetRow(pPicture, PickAt(i, rows, height));
    for (double& sum : sums) {
      sum += static_cast<double>(pixel[1]);
      pixel += 3;
    }
  }
  return sums;
}

}  // namespace

bool StatesPanorama(const std::string& pXmp) {
  if (FindProperty(pXmp, "GPano:ProjectionType") != "equirectangular") return false;
  const std::string_view cropped = FindProperty(pXmp, "GPano:CroppedAreaImageWidthPixels");
  return cropped.empty() || cropped == FindProperty(pXmp, "GPano:FullPanoWidthPixels");
}

bool HasPanoramaShape(int pWidth, int pHeight) {
  constexpr int kFewestColumns = 64;
  const std::int64_t tooWide = std::int64_t{pWidth} - 2 * std::int64_t{pHeight};
  return pWidth >= kFewestColumns && std::abs(tooWide) * 100 <= pWidth;
}

bool EdgesMeet(const sPicture& pPicture) {
  const int width = pPicture.fBitmap->GetWidth();
  if (!HasPanoramaShape(width, pPicture.fBitmap->GetHeight())) return false;
  const int count = std::max(width / 1024, 1);  // of pixels that make one
  const double usual = MeasureUsualStep(pPicture, count);
  const double step = CompareColumns(pPicture, width - count, 0, count);
  if (usual == 0.0) return step == 0.0;
  constexpr double kLeastShares[] = {0.0, 0.0, 0.45, 0.35};
  double share = 0.0;
  double correlation = 0.0;
  for (int i = 0; i < 4; ++i) {
    const sSeam seam = LookAtSeam(pPicture, count << i);
    if (seam.fShare < kLeastShares[i]) return false;
    share += seam.fShare / 4.0;
    if (i < 3) correlation += seam.fCorrelation / 3.0;
  }
  const double excess = std::log2(std::max(step / usual, 1.0));
  return share + 1.2 * std::max(correlation, 0.0) - 0.1 * excess > 1.73;
}

int FindStartColumn(const sPicture& pPicture) {
  const std::vector<double> sums = SumColumns(pPicture);
  const std::size_t width = sums.size();
  std::size_t best = 0;
  std::size_t other = 1;
  std::size_t length = 0;  // both sequences are alike so far
  while (best < width && other < width && length < width) {
    const double a = sums[(best + length) % width];
    const double b = sums[(other + length) % width];
    if (a == b) {
      ++length;
      continue;
    }
    // None of the starts that were passed can be the least.
    (a > b ? best : other) += length + 1;
    if (best == other) ++other;
    length = 0;
  }
  return static_cast<int>(std::min(best, other));
}

void cRolledSource::ReadRun(int pY, int pX, int pCount, float* pToX, float* pToY, float* pToZ) const {
  const int first = static_cast<int>((std::int64_t{fStart} + pX) % GetWidth());
  const int count = std::min(pCount, GetWidth() - first);
  fImage.ReadRun(pY, first, count, pToX, pToY, pToZ);
  fImage.ReadRun(pY, 0, pCount - count, pToX + count, pToY + count, pToZ + count);
}

}  // namespace Photo
