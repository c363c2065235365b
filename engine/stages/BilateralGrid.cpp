#include "engine/stages/BilateralGrid.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

#include "engine/Quantise.h"
#include "engine/stages/BoxSmoother.h"
#include "engine/stages/Plane.h"
#include "engine/stages/StageFlags.h"

namespace TmEngine {
namespace {

constexpr float kMargin = 3.0f;  // cells on the low side of each axis
constexpr int kSpareCells = 7;   // that margin, the blur kernel's reach and the upper neighbour

/// Sizes in cells; a cell is a pair of floats (sum of values, sum of weights), x fastest, then y, then z.
struct sGridSize {
  int fX, fY, fZ;

  std::ptrdiff_t Cell(int pX, int pY, int pZ) const {
    return (static_cast<std::ptrdiff_t>(pZ) * fY + pY) * fX + pX;
  }
};

/// The picture and its mapping to the grid.
struct sFilter {
  const float* fFrom;
  int fWidth;
  int fHeight;
  float fSigmaS;
  float fSigmaR;
  float fRangeMin;
  sGridSize fSize;
};

int AxisCells(float pExtentInCells) {
  const float cells = std::trunc(pExtentInCells + 0.5f) + static_cast<float>(kSpareCells);
  if (!(cells < 16777216.0f)) throw std::bad_alloc();  // also for what is not a number
  return static_cast<int>(cells);
}

using tCells = std::unique_ptr<float[], sFreeBlock>;

tCells AllocCells(const sGridSize& pSize) {
  // Three axes of less than 2^24 cells each can exceed 64 bits; a double tells without loss of what matters.
  const double bytes = static_cast<double>(pSize.fX) * pSize.fY * pSize.fZ * (2 * sizeof(float));
  if (bytes > static_cast<double>(PTRDIFF_MAX / 2)) throw std::bad_alloc();
  const std::size_t cells = static_cast<std::size_t>(pSize.Cell(0, 0, pSize.fZ));
  tCells block(static_cast<float*>(std::calloc(cells, 2 * sizeof(float))));
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

/// A column of the picture as the grid sees it.
struct sColumn {
  int fSource;
  int fCell;
};

int SpatialCell(float pPosition, float pSigmaS, int pCells) {
  return ClampToIndex(pPosition / pSigmaS + 0.5f + kMargin, pCells - 1);
}

std::vector<sColumn> SplatColumns(const sFilter& pFilter, bool pWrap) {
  const auto width = static_cast<std::int64_t>(pFilter.fWidth);
  const float margin = 3.0f * pFilter.fSigmaS;
  const std::int64_t first = pWrap ? static_cast<std::int64_t>(1.0f - margin) : 0;
  const float end = pWrap ? static_cast<float>(width) + margin - 1.0f : static_cast<float>(width);
  std::vector<sColumn> columns;
  for (std::int64_t x = first; pWrap ? static_cast<float>(x) < end : x < width; ++x) {
    const std::int64_t source = ((x + 3 * width) % width + width) % width;
    columns.push_back(
        {static_cast<int>(source), SpatialCell(static_cast<float>(x), pFilter.fSigmaS, pFilter.fSize.fX)});
  }
  return columns;
}

// The steps poll pCancel before each row, of the picture or of the grid, and return false when it is set.

/// Sums each pixel into its nearest cell. Float sums depend on their order: rows down, columns left to right.
bool Splat(const bool* pCancel, const sFilter& pFilter, bool pWrap, float* pCells) {
  const sGridSize& size = pFilter.fSize;
  const std::vector<sColumn> columns = SplatColumns(pFilter, pWrap);
  for (int y = 0; y < pFilter.fHeight; ++y) {
    if (IsSet(pCancel)) return false;
    const float* row = pFilter.fFrom + RowStart(y, pFilter.fWidth);
    const int cellY = SpatialCell(static_cast<float>(y), pFilter.fSigmaS, size.fY);
    for (const sColumn& column : columns) {
      const float value = row[column.fSource] - pFilter.fRangeMin;
      const int cellZ = ClampToIndex(value / pFilter.fSigmaR + 0.5f + kMargin, size.fZ - 1);
      float* cell = pCells + 2 * size.Cell(column.fCell, cellY, cellZ);
      cell[0] += value;
      cell[1] += 1.0f;
    }
  }
  return true;
}

/// Calls pRow(first float, one past the last) for each row of interior cells.
template <class tRow>
bool ForEachInteriorRow(const bool* pCancel, const sGridSize& pSize, const tRow& pRow) {
  for (int z = 1; z < pSize.fZ - 1; ++z) {
    for (int y = 1; y < pSize.fY - 1; ++y) {
      if (IsSet(pCancel)) return false;
      pRow(2 * pSize.Cell(1, y, z), 2 * pSize.Cell(pSize.fX - 1, y, z));
    }
  }
  return true;
}

float Kernel(const float* pAt, std::ptrdiff_t pStep) {
  return (pAt[-pStep] + 2.0f * pAt[0]) + pAt[pStep];
}

bool BlurPass(const bool* pCancel, const sGridSize& pSize, std::ptrdiff_t pStep, const float* pFrom,
              float* pTo) {
  return ForEachInteriorRow(pCancel, pSize, [=](std::ptrdiff_t pFirst, std::ptrdiff_t pEnd) {
    for (std::ptrdiff_t i = pFirst; i < pEnd; ++i) pTo[i] = Kernel(pFrom + i, pStep);
  });
}

/// A pass that leaves the quotient of value and weight in the value's place.
bool BlurAndNormalise(const bool* pCancel, const sGridSize& pSize, std::ptrdiff_t pStep, const float* pFrom,
                      float* pTo) {
  return ForEachInteriorRow(pCancel, pSize, [=](std::ptrdiff_t pFirst, std::ptrdiff_t pEnd) {
    for (std::ptrdiff_t i = pFirst; i < pEnd; i += 2) {
      const float value = Kernel(pFrom + i, pStep);
      const float weight = Kernel(pFrom + i + 1, pStep);
      pTo[i] = weight != 0.0f ? value / weight : value;
    }
  });
}

/// Twice along each axis, so that the kernel is 1 4 6 4 1. Border cells are never written: what the scratch
/// grid holds there reaches the cells next to the border only, which no pixel reads.
bool Blur(const bool* pCancel, const sGridSize& pSize, float* pCells, float* pScratch) {
  const std::ptrdiff_t stepX = 2;
  const std::ptrdiff_t stepY = 2 * pSize.Cell(0, 1, 0);
  const std::ptrdiff_t stepZ = 2 * pSize.Cell(0, 0, 1);
  return BlurPass(pCancel, pSize, stepX, pCells, pScratch) &&
         BlurPass(pCancel, pSize, stepX, pScratch, pCells) &&
         BlurPass(pCancel, pSize, stepY, pCells, pScratch) &&
         BlurPass(pCancel, pSize, stepY, pScratch, pCells) &&
         BlurPass(pCancel, pSize, stepZ, pCells, pScratch) &&
         BlurAndNormalise(pCancel, pSize, stepZ, pScratch, pCells);
}

/// A continuous grid position: the lower cell and the fraction of the way to the next.
struct sPosition {
  int fCell;
  float fFraction;
};

sPosition GridPosition(float pPosition, int pCells) {
  const int cell = ClampToIndex(pPosition, pCells - 2);
  return {cell, pPosition - static_cast<float>(cell)};
}

float Mix(float pA, float pB, float pFraction) {
  return (1.0f - pFraction) * pA + pFraction * pB;
}

/// The value channel of the eight cells around a point, interpolated along x, then y, then z.
float Trilinear(const float* pCell, std::ptrdiff_t pStepY, std::ptrdiff_t pStepZ, float pX, float pY,
                float pZ) {
  const float low = Mix(Mix(pCell[0], pCell[2], pX), Mix(pCell[pStepY], pCell[pStepY + 2], pX), pY);
  const float* next = pCell + pStepZ;
  const float high = Mix(Mix(next[0], next[2], pX), Mix(next[pStepY], next[pStepY + 2], pX), pY);
  return Mix(low, high, pZ);
}

bool Slice(const bool* pCancel, const sFilter& pFilter, const float* pCells, float* pTo) {
  const sGridSize& size = pFilter.fSize;
  const std::ptrdiff_t stepY = 2 * size.Cell(0, 1, 0);
  const std::ptrdiff_t stepZ = 2 * size.Cell(0, 0, 1);
  std::vector<sPosition> columns(static_cast<std::size_t>(pFilter.fWidth));
  for (int x = 0; x < pFilter.fWidth; ++x) {
    columns[static_cast<std::size_t>(x)] =
        GridPosition(static_cast<float>(x) / pFilter.fSigmaS + kMargin, size.fX);
  }
  for (int y = 0; y < pFilter.fHeight; ++y) {
    if (IsSet(pCancel)) return false;
    const float* from = pFilter.fFrom + RowStart(y, pFilter.fWidth);
    float* to = pTo + RowStart(y, pFilter.fWidth);
    const sPosition row = GridPosition(static_cast<float>(y) / pFilter.fSigmaS + kMargin, size.fY);
    for (const sPosition& column : columns) {
      const sPosition depth =
          GridPosition((*from++ - pFilter.fRangeMin) / pFilter.fSigmaR + kMargin, size.fZ);
      const float* cell = pCells + 2 * size.Cell(column.fCell, row.fCell, depth.fCell);
      *to++ =
          Trilinear(cell, stepY, stepZ, column.fFraction, row.fFraction, depth.fFraction) + pFilter.fRangeMin;
    }
  }
  return true;
}

}  // namespace

void FilterWithBilateralGrid(const bool* pCancel, bool* pAborted, const float* pFrom, float* pTo, int pWidth,
                             int pHeight, float pSigmaS, float pSigmaR, float pRangeMin, float pRangeMax,
                             float pLocalContrast, bool pWrap) {
  const sGridSize size{AxisCells(static_cast<float>(pWidth - 1) / pSigmaS),
                       AxisCells(static_cast<float>(pHeight - 1) / pSigmaS),
                       AxisCells((pRangeMax - pRangeMin) / pSigmaR)};
  const sFilter filter{pFrom, pWidth, pHeight, pSigmaS, pSigmaR, pRangeMin, size};
  const tCells grid = AllocCells(size);
  {
    const tCells scratch = AllocCells(size);
    if (!Splat(pCancel, filter, pWrap, grid.get()) || !Blur(pCancel, size, grid.get(), scratch.get())) {
      return SetAborted(pAborted);
    }
  }
  const float sigma = static_cast<float>(std::max(pWidth, pHeight)) * pLocalContrast / 3000.0f;
  if (!Slice(pCancel, filter, grid.get(), pTo) || !SmoothWithBox(pTo, pTo, pWidth, pHeight, sigma, pCancel)) {
    SetAborted(pAborted);
  }
}

}  // namespace TmEngine
