#include "photo/picture/Seam.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace Photo {
namespace {

constexpr std::size_t kColumns = 8;
constexpr std::size_t kLast = kColumns / 2 - 1;  ///< The last column of cells before the line.

/// The logarithms of the mean luminances of a row of cells.
using tCells = std::array<double, kColumns>;

tCells MeasureCells(const sPicture& pPicture, int pRow, int pSide) {
  constexpr double kDarkest = 1e-6;
  const int width = pPicture.fBitmap->GetWidth();
  tCells sums = {};
  for (int y = pRow * pSide; y < (pRow + 1) * pSide; ++y) {
    for (std::size_t i = 0; i < kColumns; ++i) {
      const int column = static_cast<int>(i) - static_cast<int>(kColumns / 2);
      const int x = column * pSide + (i <= kLast ? width : 0);
      const float* pixel = GetRow(pPicture, y) + std::ptrdiff_t{3} * x;
      for (int j = 0; j < pSide; ++j, pixel += 3) sums[i] += static_cast<double>(pixel[1]);
    }
  }
  for (double& sum : sums) sum = std::log(std::max(sum / pSide / pSide, kDarkest));
  return sums;
}

bool IsUsualStep(const tCells& pCells) {
  double usual = 0.0;
  for (std::size_t i = 0; i + 1 < kColumns; ++i) {
    if (i != kLast) usual = std::max(usual, std::fabs(pCells[i + 1] - pCells[i]));
  }
  return std::fabs(pCells[kLast + 1] - pCells[kLast]) <= usual;
}

double Correlate(const std::vector<tCells>& pRows, std::size_t pA, std::size_t pB) {
  double meanA = 0.0;
  double meanB = 0.0;
  for (const tCells& row : pRows) {
    meanA += row[pA] / static_cast<double>(pRows.size());
    meanB += row[pB] / static_cast<double>(pRows.size());
  }
  double both = 0.0;
  double squaresA = 0.0;
  double squaresB = 0.0;
  for (const tCells& row : pRows) {
    both += (row[pA] - meanA) * (row[pB] - meanB);
    squaresA += (row[pA] - meanA) * (row[pA] - meanA);
    squaresB += (row[pB] - meanB) * (row[pB] - meanB);
  }
  constexpr double kConstant = 1e-12;  // what rounding leaves
  if (squaresA < kConstant || squaresB < kConstant) return 0.0;
  return both / std::sqrt(squaresA * squaresB);
}

}  // namespace

sSeam LookAtSeam(const sPicture& pPicture, int pSide) {
  const int count = pPicture.fBitmap->GetHeight() / pSide;
  std::vector<tCells> rows;
  rows.reserve(static_cast<std::size_t>(count));
  for (int row = 0; row < count; ++row) rows.push_back(MeasureCells(pPicture, row, pSide));
  const auto usual = std::count_if(rows.begin(), rows.end(), IsUsualStep);
  return {static_cast<double>(usual) / static_cast<double>(rows.size()), Correlate(rows, kLast, kLast + 1)};
}

}  // namespace Photo
