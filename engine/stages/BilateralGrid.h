#pragma once

#include <memory>
#include <vector>

#include "engine/base/Plane.h"

namespace TmEngine {

/// Edge-preserving smoothing with a bilateral grid (Chen, Paris, Durand, "Real-time edge-aware image
/// processing with the bilateral grid", SIGGRAPH 2007): pixels are summed into coarse cells over (x, y,
/// value), the grid is blurred with a binomial kernel along each axis, normalised, and read back at each
/// pixel: Splat, Blur, then SliceRow for the rows wanted.
///
/// Splat and Blur poll pCancel before each row, of the picture or of the grid (with wrap, where a row is
/// summed several times over, each time), and return false when it is set. All throw std::bad_alloc, nothing
/// else.
class cBilateralGrid {
 public:
  /// For a picture of pWidth * pHeight values between pRangeMin and pRangeMax. pSigmaS: cell size in pixels,
  /// pSigmaR: in units of the values, both above 0. Throws for what IsWithinBounds refuses as well.
  cBilateralGrid(int pWidth, int pHeight, float pSigmaS, float pSigmaR, float pRangeMin, float pRangeMax);

  /// Whether such a grid has at most 100 million cells (of 16 bytes, with those of the blur), or at most
  /// eight for each pixel of a larger picture. A pixel falls into one cell and a blur reaches its neighbours,
  /// so a larger grid is mostly empty. Sliders half as far again as documented stay within the bounds: they
  /// give at most 92 million cells, in square pictures whose luminances span all that floats hold (77
  /// decades). Infinite ranges and NaN are out of bounds.
  static bool IsWithinBounds(int pWidth, int pHeight, float pSigmaS, float pSigmaR, float pRangeMin,
                             float pRangeMax);

  /// Sums each pixel into its nearest cell. pFrom: row-major, no padding. pWrap: the left and right edges
  /// meet, and the picture continues around them for three pSigmaS, but for no more than three widths.
  bool Splat(const bool* pCancel, const float* pFrom, bool pWrap);
  bool Blur(const bool* pCancel);
  /// Interpolates between the cells around each pixel of row pY. pTo is not pFrom.
  void SliceRow(int pY, const float* pFrom, float* pTo);

 private:
  /// Columns of the picture, side by side, that fall into one column of cells.
  struct sColumns {
    int fFirst;
    int fCount;
    int fCell;
  };

  std::ptrdiff_t Cell(int pX, int pY, int pZ) const {
    return (static_cast<std::ptrdiff_t>(pZ) * fCellsY + pY) * fCellsX + pX;
  }
  float* AllocCells() const;
  std::vector<sColumns> SplatColumns(bool pWrap) const;
  void SplatRow(const float* pFrom, const int* pCellsZ, const std::vector<sColumns>& pColumns, float* pRow);
  bool SplatRepeatedRow(const bool* pCancel, const float* pFrom, const int* pCellsZ,
                        const std::vector<sColumns>& pColumns, float* pRow);
  void FindSliceColumns();
  template <class tRow>
  bool ForEachInteriorRow(const bool* pCancel, const tRow& pRow) const;
  bool BlurPass(const bool* pCancel, std::ptrdiff_t pStep, const float* pFrom, float* pTo) const;
  bool BlurAndNormalise(const bool* pCancel, std::ptrdiff_t pStep, const float* pFrom, float* pTo) const;

  using tCells = std::unique_ptr<float[], sFreeBlock>;

  int fWidth;
  int fHeight;
  float fSigmaS;
  float fSigmaR;
  float fRangeMin;
  int fCellsX, fCellsY, fCellsZ;
  tCells fCells;    // pairs: sum of values, sum of weights; x fastest, then y, then z
  tCells fScratch;  // until the blur is done

  // For SliceRow: where each column lies between its two cells, and scratch for a row.
  std::vector<sColumns> fColumns;
  std::vector<float> fFractionsX;
  std::vector<int> fRowCells;
  std::vector<float> fRowFractions;
  std::vector<float> fRowBase;
};

}  // namespace TmEngine
