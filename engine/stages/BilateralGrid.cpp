#include "engine/stages/BilateralGrid.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "engine/base/StageFlags.h"
#include "engine/kernels/Kernels.h"
#include "engine/math/Quantise.h"

namespace TmEngine {
namespace {

constexpr float kMargin = 3.0f;  // cells on the low side of each axis
constexpr int kSpareCells = 7;   // that margin, the blur kernel's reach and the upper neighbour
constexpr int kSlack = 16;       // elements that a kernel may touch behind a row

/// Cells along an axis; a whole number, infinity or NaN.
float AxisCells(float pExtent, float pSigma) {
  return std::trunc(pExtent / pSigma + 0.5f) + static_cast<float>(kSpareCells);
}

int CountOf(float pCells) {
  return ClampToIndex(pCells, 1 << 30);  // the constructor refuses what is clamped
}

int NearestCell(float pPosition, float pSigmaS, int pCells) {
  return ClampToIndex(pPosition / pSigmaS + 0.5f + kMargin, pCells - 1);
}

/// A continuous grid position: the lower cell and the fraction of the way to the next.
struct sPosition {
  int fCell;
  float fFraction;
};

sPosition GridPosition(float pPosition, float pSigmaS, int pCells) {
  const float position = pPosition / pSigmaS + kMargin;
  const int cell = ClampToIndex(position, pCells - 2);
  return {cell, position - static_cast<float>(cell)};
}

float Kernel(const float* pAt, std::ptrdiff_t pStep) {
  return (pAt[-pStep] + 2.0f * pAt[0]) + pAt[pStep];
}

}  // namespace

bool cBilateralGrid::IsWithinBounds(int pWidth, int pHeight, float pSigmaS, float pSigmaR, float pRangeMin,
                                    float pRangeMax) {
  constexpr double kAlways = 1e8, kPerPixel = 8.0;
  // The product of three axes may not fit 64 bits; a double's rounding is far below the limit's precision.
  const double cells = static_cast<double>(AxisCells(static_cast<float>(pWidth - 1), pSigmaS)) *
                       static_cast<double>(AxisCells(static_cast<float>(pHeight - 1), pSigmaS)) *
                       static_cast<double>(AxisCells(pRangeMax - pRangeMin, pSigmaR));
  return cells <= std::max(kAlways, kPerPixel * pWidth * pHeight);  // false for NaN
}

cBilateralGrid::cBilateralGrid(int pWidth, int pHeight, float pSigmaS, float pSigmaR, float pRangeMin,
                               float pRangeMax)
    : fWidth(pWidth),
      fHeight(pHeight),
      fSigmaS(pSigmaS),
      fSigmaR(pSigmaR),
      fRangeMin(pRangeMin),
      fCellsX(CountOf(AxisCells(static_cast<float>(pWidth - 1), pSigmaS))),
      fCellsY(CountOf(AxisCells(static_cast<float>(pHeight - 1), pSigmaS))),
      fCellsZ(CountOf(AxisCells(pRangeMax - pRangeMin, pSigmaR))) {
  if (!IsWithinBounds(pWidth, pHeight, pSigmaS, pSigmaR, pRangeMin, pRangeMax)) throw std::bad_alloc();
  fCells.reset(AllocCells());
  fScratch.reset(AllocCells());
  FindSliceColumns();
}

float* cBilateralGrid::AllocCells() const {
  const std::size_t cells = static_cast<std::size_t>(Cell(0, 0, fCellsZ));
  auto* const block = static_cast<float*>(std::calloc(cells, 2 * sizeof(float)));
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

namespace {

/// The first whole number from pFirst to pEnd for which pHolds is false. pHolds is true up to some number and
/// false from there on (the search is binary).
template <class tHolds>
std::int64_t FirstBeyond(std::int64_t pFirst, std::int64_t pEnd, const tHolds& pHolds) {
  while (pFirst < pEnd) {
    const std::int64_t middle = pFirst + (pEnd - pFirst) / 2;
    if (pHolds(middle)) {
      pFirst = middle + 1;
    } else {
      pEnd = middle;
    }
  }
  return pFirst;
}

/// Columns that a row is summed over; negative ones, and those from the width on, lie around the wrapped
/// edges.
struct sExtent {
  std::int64_t fFirst;
  std::int64_t fEnd;
};

sExtent WrappedExtent(std::int64_t pWidth, float pSigmaS) {
  const float width = static_cast<float>(pWidth);
  const float margin = 3.0f * pSigmaS;
  const auto first = static_cast<std::int64_t>(std::max(1.0f - margin, -3.0f * width));
  const float end = width + margin - 1.0f;
  const auto isBefore = [=](std::int64_t pX) { return static_cast<float>(pX) < end; };
  return {first, FirstBeyond(first, 4 * pWidth, isBefore)};
}

}  // namespace

std::vector<cBilateralGrid::sColumns> cBilateralGrid::SplatColumns(bool pWrap) const {
  const auto width = static_cast<std::int64_t>(fWidth);
  const sExtent extent = pWrap ? WrappedExtent(width, fSigmaS) : sExtent{0, width};
  const auto cellOf = [this](std::int64_t pX) {
    return NearestCell(static_cast<float>(pX), fSigmaS, fCellsX);
  };
  std::vector<sColumns> columns;
  for (std::int64_t x = extent.fFirst; x < extent.fEnd;) {
    const std::int64_t source = (x % width + width) % width;
    const int cell = cellOf(x);
    const std::int64_t next = FirstBeyond(x + 1, std::min(extent.fEnd, x - source + width),
                                          [=](std::int64_t pX) { return cellOf(pX) == cell; });
    columns.push_back({static_cast<int>(source), static_cast<int>(next - x), cell});
    x = next;
  }
  return columns;
}

namespace {

/// A cell's two sums, added to at once.
using tSums = float __attribute__((vector_size(2 * sizeof(float))));

/// Adds a run of values into the cells of one column of the grid.
struct sSplat {
  const float* fValues;
  const int* fCellsZ;
  float* fCells;
  std::ptrdiff_t fStepZ;
  float fMin;

  float* CellOf(int pIndex) const { return fCells + fCellsZ[pIndex] * fStepZ; }
  tSums SumsOf(int pIndex) const { return tSums{fValues[pIndex] - fMin, 1.0f}; }
  static tSums Load(const float* pCell) {
    tSums sums;
    __builtin_memcpy(&sums, pCell, sizeof sums);
    return sums;
  }
  static void Store(float* pCell, tSums pSums) { __builtin_memcpy(pCell, &pSums, sizeof pSums); }

  void Add(int pIndex) const { Store(CellOf(pIndex), Load(CellOf(pIndex)) + SumsOf(pIndex)); }

  /// Adds the first pCount values. Sums stay in a register until the cell changes: where that is seldom, this
  /// is faster than a store and a load, each waiting for the one before, for every value.
  void AddStretches(int pCount) const {
    float* cell = CellOf(0);
    tSums sums = Load(cell);
    for (int i = 0; i < pCount; ++i) {
      if (CellOf(i) != cell) {
        Store(cell, sums);
        cell = CellOf(i);
        sums = Load(cell);
      }
      sums += SumsOf(i);
    }
    Store(cell, sums);
  }
};

/// Whether neighbours mostly fall into the same cell.
bool HasLongStretches(const int* pCells, int pCount) {
  int changes = 0;
  for (int i = 1; i < pCount; ++i) changes += pCells[i] != pCells[i - 1] ? 1 : 0;
  return changes <= pCount / 8;
}

}  // namespace

/// Float sums depend on their order: within a cell, columns are added left to right. Runs of other cells are
/// added in turn, four at a time, so that no addition waits for the one before.
void cBilateralGrid::SplatRow(const float* pFrom, const int* pCellsZ, const std::vector<sColumns>& pColumns,
                              float* pRow) {
  const std::ptrdiff_t stepZ = 2 * Cell(0, 0, 1);
  const auto splat = [&](const sColumns& pRun) {
    return sSplat{pFrom + pRun.fFirst, pCellsZ + pRun.fFirst, pRow + std::ptrdiff_t{2} * pRun.fCell, stepZ,
                  fRangeMin};
  };
  constexpr std::size_t kAtOnce = 4;
  std::size_t next = 0;
  for (; next + kAtOnce <= pColumns.size(); next += kAtOnce) {
    const sColumns* const run = &pColumns[next];
    const sSplat splats[kAtOnce] = {splat(run[0]), splat(run[1]), splat(run[2]), splat(run[3])};
    const bool areDistinct =
        run[0].fCell != run[1].fCell && run[1].fCell != run[2].fCell && run[2].fCell != run[3].fCell;
    const int common =
        areDistinct ? std::min({run[0].fCount, run[1].fCount, run[2].fCount, run[3].fCount}) : 0;
    for (int i = 0; i < common; ++i) {
      for (const sSplat& each : splats) each.Add(i);
    }
    for (std::size_t k = 0; k < kAtOnce; ++k) {
      for (int i = common; i < run[k].fCount; ++i) splats[k].Add(i);
    }
  }
  for (; next < pColumns.size(); ++next) {
    const sSplat last = splat(pColumns[next]);
    for (int i = 0; i < pColumns[next].fCount; ++i) last.Add(i);
  }
}

/// Sums a wrapped row, which is taken several times over and falls mostly into few cells, so that each
/// addition to a cell would wait for the one before.
bool cBilateralGrid::SplatRepeatedRow(const bool* pCancel, const float* pFrom, const int* pCellsZ,
                                      const std::vector<sColumns>& pColumns, float* pRow) {
  const std::ptrdiff_t stepZ = 2 * Cell(0, 0, 1);
  const bool hasLongStretches = HasLongStretches(pCellsZ, fWidth);
  for (const sColumns& run : pColumns) {
    if (IsSet(pCancel)) return false;
    const sSplat splat = {pFrom + run.fFirst, pCellsZ + run.fFirst, pRow + std::ptrdiff_t{2} * run.fCell,
                          stepZ, fRangeMin};
    if (hasLongStretches) {
      splat.AddStretches(run.fCount);
    } else {
      for (int i = 0; i < run.fCount; ++i) splat.Add(i);
    }
  }
  return true;
}

bool cBilateralGrid::Splat(const bool* pCancel, const float* pFrom, bool pWrap) {
  const sKernels& kernels = Kernels();
  const std::vector<sColumns> columns = SplatColumns(pWrap);
  std::int64_t columnsOfRow = 0;
  for (const sColumns& run : columns) columnsOfRow += run.fCount;
  const bool isRepeated = columnsOfRow > std::int64_t{2} * fWidth;
  for (int y = 0; y < fHeight; ++y) {
    if (IsSet(pCancel)) return false;
    const float* const row = pFrom + RowStart(y, fWidth);
    kernels.fNearestCells(row, fRangeMin, fSigmaR, fCellsZ - 1, fRowCells.data(), fWidth);
    const int cellY = NearestCell(static_cast<float>(y), fSigmaS, fCellsY);
    float* const cells = fCells.get() + 2 * Cell(0, cellY, 0);
    if (!isRepeated) {
      SplatRow(row, fRowCells.data(), columns, cells);
    } else if (!SplatRepeatedRow(pCancel, row, fRowCells.data(), columns, cells)) {
      return false;
    }
  }
  return true;
}

/// Calls pRow(first float, one past the last) for each row of interior cells.
template <class tRow>
bool cBilateralGrid::ForEachInteriorRow(const bool* pCancel, const tRow& pRow) const {
  for (int z = 1; z < fCellsZ - 1; ++z) {
    for (int y = 1; y < fCellsY - 1; ++y) {
      if (IsSet(pCancel)) return false;
      pRow(2 * Cell(1, y, z), 2 * Cell(fCellsX - 1, y, z));
    }
  }
  return true;
}

bool cBilateralGrid::BlurPass(const bool* pCancel, std::ptrdiff_t pStep, const float* pFrom,
                              float* pTo) const {
  return ForEachInteriorRow(pCancel, [=](std::ptrdiff_t pFirst, std::ptrdiff_t pEnd) {
    for (std::ptrdiff_t i = pFirst; i < pEnd; ++i) pTo[i] = Kernel(pFrom + i, pStep);
  });
}

/// The last pass of the blur, which also replaces each sum of values by the mean: the sum over the weight.
bool cBilateralGrid::BlurAndNormalise(const bool* pCancel, std::ptrdiff_t pStep, const float* pFrom,
                                      float* pTo) const {
  return ForEachInteriorRow(pCancel, [=](std::ptrdiff_t pFirst, std::ptrdiff_t pEnd) {
    for (std::ptrdiff_t i = pFirst; i < pEnd; i += 2) {
      const float value = Kernel(pFrom + i, pStep);
      const float weight = Kernel(pFrom + i + 1, pStep);
      pTo[i] = weight != 0.0f ? value / weight : value;
    }
  });
}

/// Twice along each axis, so that the kernel is 1 4 6 4 1. Border cells are never written: what the scratch
/// grid holds there reaches the cells next to the border only, which no pixel reads.
bool cBilateralGrid::Blur(const bool* pCancel) {
  float* const cells = fCells.get();
  float* const scratch = fScratch.get();
  const std::ptrdiff_t stepX = 2;
  const std::ptrdiff_t stepY = 2 * Cell(0, 1, 0);
  const std::ptrdiff_t stepZ = 2 * Cell(0, 0, 1);
  const bool done = BlurPass(pCancel, stepX, cells, scratch) && BlurPass(pCancel, stepX, scratch, cells) &&
                    BlurPass(pCancel, stepY, cells, scratch) && BlurPass(pCancel, stepY, scratch, cells) &&
                    BlurPass(pCancel, stepZ, cells, scratch) &&
                    BlurAndNormalise(pCancel, stepZ, scratch, cells);
  fScratch.reset();
  return done;
}

void cBilateralGrid::FindSliceColumns() {
  const std::size_t length = static_cast<std::size_t>(fWidth) + kSlack;
  fFractionsX.resize(length);
  fRowCells.resize(length);
  fRowFractions.resize(length);
  fRowBase.resize(length);
  for (int x = 0; x < fWidth; ++x) {
    const sPosition position = GridPosition(static_cast<float>(x), fSigmaS, fCellsX);
    fFractionsX[static_cast<std::size_t>(x)] = position.fFraction;
    if (fColumns.empty() || fColumns.back().fCell != position.fCell) {
      fColumns.push_back({x, 0, position.fCell});
    }
    ++fColumns.back().fCount;
  }
}

void cBilateralGrid::SliceRow(int pY, const float* pFrom, float* pTo) {
  const sKernels& kernels = Kernels();
  kernels.fPositions(pFrom, fRangeMin, fSigmaR, fCellsZ - 2, fRowCells.data(), fRowFractions.data(), fWidth);
  const sPosition row = GridPosition(static_cast<float>(pY), fSigmaS, fCellsY);
  for (const sColumns& columns : fColumns) {
    const sGridRun run = {fCells.get() + 2 * Cell(columns.fCell, row.fCell, 0), 2, 2 * Cell(0, 1, 0),
                          2 * Cell(0, 0, 1), row.fFraction};
    const int first = columns.fFirst;
    kernels.fInterpolate(run, fRowCells.data() + first, fRowFractions.data() + first,
                         fFractionsX.data() + first, fRangeMin, fRowBase.data() + first, columns.fCount);
  }
  std::copy_n(fRowBase.data(), fWidth, pTo);
}

}  // namespace TmEngine
