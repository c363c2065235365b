#pragma once

#include <cstddef>

namespace TmEngine {

/// A run of colours in XYZ, one plane per channel.
struct sXYZRun {
  const float* fX;
  const float* fY;
  const float* fZ;
};

/// A run of pixels of the renderer's records (see ColorRows.h).
struct sColorRun {
  float* fMin;
  float* fMax;
  unsigned short* fHue;
  float* fLuminance;  ///< null in a run without
};

/// The smallest and largest of some values. NaN counts as neither.
struct sRange {
  float fMin;
  float fMax;
};

/// One row of one column of grid cells (see BilateralGrid): what a run of pixels is interpolated from.
struct sGridRun {
  const float* fCells;    ///< value channel of the lowest cell
  std::ptrdiff_t fStepX;  ///< to the next cell, in floats
  std::ptrdiff_t fStepY;
  std::ptrdiff_t fStepZ;
  float fFractionY;
};

/// How a pixel's luminance is brought to the output's range.
struct sExposure {
  float fGain;     ///< factor where fStretch is exactly 1
  float fStretch;  ///< factor of what lies above fBlack, otherwise
  float fBlack;
};

/// What the equaliser makes of a colour.
struct sEqualiser {
  const float* fHues;       ///< three floats per hue code
  const float* fLightness;  ///< one per hue code, neutral at 0.5
  const float* fMatrix;     ///< row-major, from linear working RGB to linear output RGB
};

/// A tone curve that is interpolated: every 15th of the 65,536 samples. An entry is the value in units, above
/// the bits for the rise to the next.
inline constexpr int kLuminanceSteps = 4369;
inline constexpr int kLuminanceUnits = (1 << 19) - 1;
inline constexpr int kRiseBits = 12;

/// What becomes of colours whose hue and purity are kept (see stages/ColorRendering.h).
struct sColorRendering {
  const float* fHues;       ///< three floats per hue code, or null for those of a neutral cHueTable
  const int* fCurve;        ///< kLuminanceSteps + 1 entries over [0, 1]
  const float* fMatrix;     ///< row-major, from linear working RGB to linear output RGB
  const float* fWeights;    ///< three: luminance of linear output RGB
  const float* fToCones;    ///< row-major, from linear output RGB to the cone responses of Oklab
  const float* fFromCones;  ///< and back
};

/// Row bodies of the per-pixel stages, compiled once per instruction set from one source (Kernels.inc). All
/// sets give the same bits: every operation rounds as IEEE 754 says, and none is fused.
///
/// Counts may be any number from 0 up; a kernel reads and writes exactly that many elements, but for
/// fInterpolate. Pointers need the alignment of their element only.
struct sKernels {
  int fLanes;  ///< Floats worked on at once: 1, 4, 8 or 16.

  /// Log10, Pow(x, pY) and Pow(pX, y) of every element, as engine/math/Elementary.h has them; no float may be
  /// 0 or negative. pTo may be the other array.
  void (*fLog10Row)(const float* pX, float* pTo, int pCount);
  void (*fPowRow)(const double* pX, double pY, double* pTo, int pCount);
  void (*fBasePowRow)(double pX, const double* pY, double* pTo, int pCount);
  /// Widens pRange to hold the values.
  void (*fWiden)(const float* pValues, int pCount, sRange& pRange);
  /// Row-major pMatrix times each colour, in place.
  void (*fTransform)(const float* pMatrix, float* pX, float* pY, float* pZ, int pCount);
  /// See PrepareColors; also the luminances, held at or above pFloor.
  void (*fPrepare)(const sXYZRun& pFrom, const float* pMatrix, float pFloor, const sColorRun& pTo,
                   float* pHeldLuminance, int pCount);
  /// The grid cell along z that each value falls into: truncate((v - pMin) / pSigma + 0.5 + 3) in [0, pLast].
  void (*fNearestCells)(const float* pValues, float pMin, float pSigma, int pLast, int* pCells, int pCount);
  /// The continuous position (v - pMin) / pSigma + 3 of each value as cell, in [0, pLast], and fraction.
  void (*fPositions)(const float* pValues, float pMin, float pSigma, int pLast, int* pCells,
                     float* pFractions, int pCount);
  /// Trilinear interpolation between the cells of one run, along x, then y, then z, plus pOffset. All arrays
  /// are read, and pTo is written, up to the next multiple of 16 elements.
  void (*fInterpolate)(const sGridRun& pRun, const int* pCells, const float* pFractionsZ,
                       const float* pFractionsX, float pOffset, float* pTo, int pCount);
  /// pTo = pA - pB.
  void (*fSubtract)(const float* pA, const float* pB, float* pTo, int pCount);
  /// truncate((v - pMin) * 65535 / pWidth) in [0, 65535]: where a value lies in its range.
  void (*fQuantise)(const float* pValues, float pMin, float pWidth, int* pIndices, int pCount);
  /// truncate((v - pMin) * pScale) in [0, 65535].
  void (*fBins)(const float* pValues, float pMin, float pScale, int* pBins, int pCount);
  /// The three channels of each colour as indices of 65,536-entry tables over [0, 1]. pHues: three floats per
  /// hue code, or null for those of a neutral cHueTable.
  void (*fColorIndices)(const sColorRun& pFrom, const float* pHues, const sExposure& pExposure, int* pR,
                        int* pG, int* pB, int pCount);
  /// Row-major pMatrix times the colours that three indices of pCurve give, as indices again; in place.
  void (*fTransformIndices)(const float* pMatrix, const float* pCurve, int* pR, int* pG, int* pB, int pCount);
  /// The colours, as linear output RGB, of luminances that are brought to the output's range and put on the
  /// tone curve. Writes the places of those near or beyond the gamut's ends to pOutside, and returns how
  /// many.
  int (*fScaleColors)(const sColorRun& pFrom, const sColorRendering& pRendering, const sExposure& pExposure,
                      float* pR, float* pG, float* pB, int* pOutside, int pCount);
  /// Brings colours near or beyond the gamut's ends inside, with their hue in Oklab; in place.
  void (*fSoftenColors)(const sColorRendering& pRendering, float* pR, float* pG, float* pB, int pCount);
  /// round(sqrt(v) * 65535), with v in [0, 1]: places in a table that is fine where an encoding is steep.
  void (*fRootIndices)(const float* pValues, int* pIndices, int pCount);
  /// Row-major pMatrix times each colour, held at or above 0, as hue records.
  void (*fHueRecords)(const float* pMatrix, const sXYZRun& pFrom, const sColorRun& pTo, int pCount);
  /// Equalised colours of hue records, as indices of 65,536-entry tables: floor(v * 65536), at most 65535.
  void (*fEqualise)(const sEqualiser& pEqualiser, const sColorRun& pFrom, int* pR, int* pG, int* pB,
                    int pCount);
};

/// The widest set that this processor and operating system run.
const sKernels& Kernels();

/// The set of pLanes lanes; null when this processor cannot run it or the build has none.
const sKernels* KernelsOf(int pLanes);

}  // namespace TmEngine
