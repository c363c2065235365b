// The middle of the call, from XYZ to the encoded picture: preparation, phase 1, phase 2, final rendering.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

#include "ReferenceParts.h"
#include "ReferenceToneMapper.h"

namespace Reference {
namespace {

struct sPixel {
  float fY;
  int fHue;
  float fMin, fMax;
};

/// One picture on its way through the stages.
struct sJob {
  int fWidth, fHeight;
  const sEngineValues& fValues;
  std::string* fLog;
  sStatistics fStatistics{};
  tList<sPixel> fPixels{};
  tList<float> fLogY{}, fBase{}, fDetail{};
  float fExponent = 1.0f;  // the global one, k
  tList<float> fBaseTable{}, fDetailTable{};

  std::int64_t Count() const { return std::int64_t{fWidth} * fHeight; }
  float LongerSide() const { return static_cast<float>(std::max(fWidth, fHeight)); }
};

/// Widens [pMin, pMax] to hold pValue.
void Extend(float pValue, float& pMin, float& pMax) {
  if (pValue < pMin) pMin = pValue;
  if (pValue > pMax) pMax = pValue;
}

/// pValue without its fraction, within 0 to pLast; 0 for a NaN.
std::int64_t Truncated(float pValue, std::int64_t pLast) {
  if (!(pValue > 0.0f)) return 0;
  return pValue >= static_cast<float>(pLast) ? pLast : static_cast<std::int64_t>(pValue);
}

// ---- Preparation: luminance, hue and chromatic extremes, log luminance ----

sPixel PreparePixel(const float* pXYZ, const tMatrix& m) {
  float y = pXYZ[1];
  float r = 1.0f, g = 1.0f, b = 1.0f;
  if (y > 0.0f) {
    const float x = pXYZ[0] / y, z = pXYZ[2] / y;
    r = m[0] * x + m[1] + m[2] * z;
    g = m[3] * x + m[4] + m[5] * z;
    b = m[6] * x + m[7] + m[8] * z;
  } else {
    y = 1e-6f;
  }
  const float largest = std::max(r, std::max(g, b));
  const float smallest = std::min(r, std::min(g, b));
  const int hue = HueCode(r, g, b, smallest, largest);
  if (largest <= 0.0f) return {y, hue, 0.0f, 1.1754944e-38f};
  return {y, hue, smallest, largest};
}

/// Rounded to a float once; that of floats itself is not.
float Log10(float pValue) {
  return static_cast<float>(std::log10(double{pValue}));
}

void Prepare(sJob& pJob, const std::vector<float>& pXYZ) {
  const tMatrix toProPhoto = XyzD50ToRgb(kProPhoto);
  const float floorY = static_cast<float>(std::ldexp(1.0, -128));
  sStatistics& found = pJob.fStatistics;
  pJob.fPixels.reserve(static_cast<std::size_t>(pJob.Count()));
  pJob.fLogY.reserve(static_cast<std::size_t>(pJob.Count()));
  for (std::int64_t i = 0; i < pJob.Count(); ++i) {
    const float* xyz = pXYZ.data() + 3 * i;
    pJob.fPixels.push_back(PreparePixel(xyz, toProPhoto));
    const float y = floorY > xyz[1] ? floorY : xyz[1];
    Extend(y, found.fMinY, found.fMaxY);
    pJob.fLogY.push_back(Log10(y));
  }
  found.fLogMinY = Log10(found.fMinY);
  found.fLogMaxY = Log10(found.fMaxY);
  Log(pJob.fLog, "Prepare for Rendering - Min: %1.2f  - Max: %1.2f\n", found.fLogMinY, found.fLogMaxY);
}

// ---- Phase 1: base and detail through the bilateral grid ----

float SpatialSigma(const sJob& pJob) {
  const float m = pJob.fValues.fMicrocontrast;
  Check(!std::isnan(m), "Argument pMicrocontrast is out of range.");
  const float g = m < 100.0f ? (m - 10.0f) * 15.0f / 90.0f + 10.0f : (m - 100.0f) * 75.0f / 100.0f + 25.0f;
  const float smallest = pJob.LongerSide() / 1000.0f;
  return std::max(smallest * g, smallest);
}

float RangeSigma(const sJob& pJob) {
  Check(!std::isnan(pJob.fValues.fLighting), "Argument pLighting is out of range.");
  return std::max(pJob.fValues.fLighting * 0.4f / 200.0f + 0.2f, 0.01f);
}

struct sGrid {
  std::int64_t fSize[3];  // x, y, z
  tList<float> fValue, fWeight;

  sGrid(std::int64_t pX, std::int64_t pY, std::int64_t pZ)
      : fSize{pX, pY, pZ}, fValue(static_cast<std::size_t>(pX * pY * pZ), 0.0f), fWeight(fValue) {}
  std::int64_t Cell(std::int64_t x, std::int64_t y, std::int64_t z) const {
    return (z * fSize[1] + y) * fSize[0] + x;
  }
  void Splat(float x, float y, float z, float pValue) {
    const std::int64_t cell = Cell(Nearest(x, 0), Nearest(y, 1), Nearest(z, 2));
    fValue[cell] += pValue;
    fWeight[cell] += 1.0f;
  }
  std::int64_t Nearest(float pPosition, int pAxis) const {
    return Truncated(pPosition + 0.5f + 3.0f, fSize[pAxis] - 1);
  }
};

std::int64_t GridSize(float pExtent, float pSigma) {
  return static_cast<std::int64_t>(pExtent / pSigma + 0.5f) + 7;
}

void SplatRow(const sJob& pJob, sGrid& pGrid, int y, float pSigmaS, float pSigmaR) {
  const int width = pJob.fWidth;
  const bool wrap = pJob.fValues.fWrap;
  const float end = wrap ? static_cast<float>(width) + 3.0f * pSigmaS - 1.0f : static_cast<float>(width);
  for (int x = -3 * width; x < 4 * width; ++x) {  // further out there is no column
    const float begin = wrap ? std::trunc(1.0f - 3.0f * pSigmaS) : 0.0f;
    if (static_cast<float>(x) < begin || static_cast<float>(x) >= end) continue;
    const int column = (x + 3 * width) % width;
    const float d = pJob.fLogY[std::int64_t{y} * width + column] - pJob.fStatistics.fLogMinY;
    pGrid.Splat(static_cast<float>(x) / pSigmaS, static_cast<float>(y) / pSigmaS, d / pSigmaR, d);
  }
}

/// The kernel 1, 2, 1 over the interior cells, along the axis whose neighbours are pStep cells apart.
void BlurPass(const sGrid& pFrom, sGrid& pTo, std::int64_t pStep) {
  for (std::int64_t z = 1; z <= pFrom.fSize[2] - 2; ++z) {
    for (std::int64_t y = 1; y <= pFrom.fSize[1] - 2; ++y) {
      for (std::int64_t x = 1; x <= pFrom.fSize[0] - 2; ++x) {
        const std::int64_t i = pFrom.Cell(x, y, z);
        const tList<float>&value = pFrom.fValue, &weight = pFrom.fWeight;
        pTo.fValue[i] = (value[i - pStep] + 2.0f * value[i]) + value[i + pStep];
        pTo.fWeight[i] = (weight[i - pStep] + 2.0f * weight[i]) + weight[i + pStep];
      }
    }
  }
}

void Blur(sGrid& pGrid) {
  sGrid scratch(pGrid.fSize[0], pGrid.fSize[1], pGrid.fSize[2]);
  const std::int64_t steps[3] = {1, pGrid.fSize[0], pGrid.fSize[0] * pGrid.fSize[1]};
  for (const std::int64_t step : steps) {
    BlurPass(pGrid, scratch, step);
    BlurPass(scratch, pGrid, step);
  }
  for (std::int64_t i = 0; i < std::ssize(pGrid.fValue); ++i) {
    if (pGrid.fWeight[i] != 0.0f) pGrid.fValue[i] /= pGrid.fWeight[i];
  }
}

float Mix(float pFraction, float pA, float pB) {
  return (1.0f - pFraction) * pA + pFraction * pB;
}

float Slice(const sGrid& pGrid, const float (&pAt)[3]) {
  std::int64_t i[3];
  float u[3], plane[2], line[2];
  for (int axis = 0; axis < 3; ++axis) {
    i[axis] = static_cast<std::int64_t>(pAt[axis]);
    u[axis] = pAt[axis] - static_cast<float>(i[axis]);
  }
  for (int z = 0; z < 2; ++z) {
    for (int y = 0; y < 2; ++y) {
      const std::int64_t cell = pGrid.Cell(i[0], i[1] + y, i[2] + z);
      line[y] = Mix(u[0], pGrid.fValue[cell], pGrid.fValue[cell + 1]);
    }
    plane[z] = Mix(u[1], line[0], line[1]);
  }
  return Mix(u[2], plane[0], plane[1]);
}

void FindBase(sJob& pJob, float pSigmaS, float pSigmaR) {
  const float logMin = pJob.fStatistics.fLogMinY;
  sGrid grid(GridSize(static_cast<float>(pJob.fWidth - 1), pSigmaS),
             GridSize(static_cast<float>(pJob.fHeight - 1), pSigmaS),
             GridSize(pJob.fStatistics.fLogMaxY - logMin, pSigmaR));
  for (int y = 0; y < pJob.fHeight; ++y) SplatRow(pJob, grid, y, pSigmaS, pSigmaR);
  Blur(grid);
  pJob.fBase.reserve(static_cast<std::size_t>(pJob.Count()));
  for (std::int64_t i = 0; i < pJob.Count(); ++i) {
    const auto x = static_cast<float>(i % pJob.fWidth), y = static_cast<float>(i / pJob.fWidth);
    const float d = pJob.fLogY[i] - logMin;
    pJob.fBase.push_back(Slice(grid, {x / pSigmaS + 3.0f, y / pSigmaS + 3.0f, d / pSigmaR + 3.0f}) + logMin);
  }
}

void Phase1(sJob& pJob) {
  const float sigmaS = SpatialSigma(pJob);
  const float sigmaR = RangeSigma(pJob);
  FindBase(pJob, sigmaS, sigmaR);
  sStatistics& found = pJob.fStatistics;
  pJob.fDetail.reserve(static_cast<std::size_t>(pJob.Count()));
  for (std::int64_t i = 0; i < pJob.Count(); ++i) {
    const float base = pJob.fBase[i];
    const float detail = pJob.fLogY[i] - base;
    pJob.fDetail.push_back(detail);
    Extend(base, found.fBaseMin, found.fBaseMax);
    Extend(detail, found.fDetailMin, found.fDetailMax);
    found.fBaseMean += base;
    found.fDetailMeanMagnitude += std::fabs(detail);
  }
  found.fBaseMean /= static_cast<double>(pJob.Count());
  found.fDetailMeanMagnitude /= static_cast<double>(pJob.Count());
  Log(pJob.fLog,
      "End ToneMappingPhase1 %d x %d  - min/ave/max Base: %1.2f  %1.2f  %1.2f (vs orig: %1.2f)  -  Detail: "
      "%1.2f  %1.2f  %1.2f\n",
      pJob.fWidth, pJob.fHeight, found.fBaseMin, found.fBaseMean, found.fBaseMax, found.fLogMaxY,
      found.fDetailMin, found.fDetailMeanMagnitude, found.fDetailMax);
}

// ---- Phase 2: tone tables, exposure, black and white points ----

/// 65536 samples of 10^(value * exponent), value rising over [pMin, pMax]. With tone compression the exponent
/// falls with the distance from the typical magnitude.
tList<float> ToneTable(float pMin, float pMax, float pExponent, bool pCompress, double pTypical,
                       double pFall) {
  tList<float> table;
  for (int i = 0; i <= 65535; ++i) {
    const float t = static_cast<float>(i / 65535.0);
    const float value = t * (pMax - pMin) + pMin;
    double exponent = pExponent;
    if (pCompress) {
      const double q = std::fabs(value / pTypical);
      if (q > 0.0) exponent = Power(q, -pFall) * pExponent;
    }
    table.push_back(static_cast<float>(Power(10.0, value * exponent)));
  }
  return table;
}

float LargestOf(const tList<float>& pTable) {
  float largest = 0.0f;
  for (const float entry : pTable) largest = entry > largest ? entry : largest;
  return largest;
}

float ExposureScale(float k, float pLargestY) {
  const double g = Power(0.5, 2.2);
  const float grey = static_cast<float>(g / Power(g, k));
  const double a1 = 1.0 / double{std::pow(pLargestY, k)};
  const double kc = k < 1.0f ? k : 1.0;
  const double pi = 3.14159265358979323846;
  const double w = Power(std::cos(kc * pi - pi / 2.0), kc < 0.5 ? 4.0 : 0.5);
  const float scale = static_cast<float>(w * a1 + (1.0 - w) * grey);
  const float c = std::clamp((1.0f - k) * 2.0f, 0.0f, 1.0f);
  return static_cast<float>(scale * (Power(2.0, -0.35) * c + (1.0 - c)));
}

std::int64_t TableIndex(float pValue, float pMin, float pMax) {
  return Truncated((pValue - pMin) * 65535.0f / (pMax - pMin), 65535);
}

struct sHistogram {
  tList<std::int64_t> fBins = tList<std::int64_t>(65536, 0);
  std::int64_t fCount = 0;
  float fScale = 1.0f, fMin = 0.0f;

  void Add(float pY) {
    ++fCount;
    ++fBins[Truncated((pY - fMin) * fScale, 65535)];
  }
  /// Bins consumed from below while pTarget is above the sum (or equal to it, when pOrEqual).
  int Up(double pTarget, bool pOrEqual = false) const {
    const float target = static_cast<float>(pTarget);
    std::int64_t sum = 0;
    int bin = 0;
    while (bin < 65535 &&
           (target > static_cast<float>(sum) || (pOrEqual && target == static_cast<float>(sum)))) {
      sum += fBins[bin++];
    }
    return bin;
  }
  /// 65535 less the bins removed from above while the remainder is above pTarget.
  int Down(double pTarget) const {
    const float target = static_cast<float>(pTarget);
    std::int64_t remainder = fCount;
    int bin = 65535;
    while (bin >= 1 && static_cast<float>(remainder) > target) remainder -= fBins[bin--];
    return bin;
  }
  float Unbiased(int pBin) const { return static_cast<float>(pBin) / fScale; }
  float Value(int pBin) const { return Unbiased(pBin) + fMin; }
};

void LogPercentiles(const sJob& pJob, const sHistogram& pHistogram) {
  const double n = static_cast<float>(pHistogram.fCount);
  const int low = pHistogram.Up(0.01 * n, true);
  const int median = pHistogram.Up(0.5 * n);
  const int high[3] = {pHistogram.Down(0.99 * n), pHistogram.Down(0.9999 * n), pHistogram.Down(0.99995 * n)};
  Log(pJob.fLog,
      "Linear Perc1 at: %d (%1.2f) -  Median: %d (%1.2f)  - perc99andhigher:  %d  %d  %d  (%1.2f  %1.2f  "
      "%1.2f) -  max: %d  (%1.2f)\n",
      low >> 8, pHistogram.Value(low), median >> 8, pHistogram.Unbiased(median), high[0] >> 8, high[1] >> 8,
      high[2] >> 8, pHistogram.Value(high[0]), pHistogram.Value(high[1]), pHistogram.Value(high[2]),
      65535 >> 8, pHistogram.Value(65535));
}

void FindPoints(sJob& pJob, float pMin, float pMax, double pSum) {
  sStatistics& found = pJob.fStatistics;
  sHistogram histogram;
  histogram.fMin = pMin;
  if (pMax > pMin) histogram.fScale = 65535.0f / (pMax - pMin);
  Log(pJob.fLog,
      "Tone Mapped Y Min/Max: [%1.2f  %1.2f] (vs orig [%1.2f  %1.2f]) ave: %1.2f  -> scaling: %1.2f (vs "
      "exposure: %1.2f)\n",
      pMin, pMax, found.fMinY, found.fMaxY, pSum / static_cast<double>(pJob.Count()), 1.0f / (pMax - pMin),
      found.fExposureScale);
  for (const sPixel& pixel : pJob.fPixels) histogram.Add(pixel.fY);
  LogPercentiles(pJob, histogram);
  const sEngineValues& values = pJob.fValues;
  found.fBlack = histogram.Value(histogram.Up(values.fBlackClip / 100.0 * pJob.fWidth * pJob.fHeight));
  found.fWhite =
      histogram.Value(histogram.Down((1.0 - values.fWhiteClip / 100.0) * pJob.fWidth * pJob.fHeight));
  Log(pJob.fLog,
      "  ==> Linear Black: %1.2f (vs %1.2f) - White: %1.2f (vs %1.2f)  ->  Scaling:  %1.2f  (vs %1.2f)\n",
      found.fBlack, pMin, found.fWhite, pMax, 1.0f / (found.fWhite - found.fBlack), 1.0f / (pMax - pMin));
}

void MapLuminance(sJob& pJob, float pInitialMin) {
  const sStatistics& found = pJob.fStatistics;
  float largest = 0.0f, smallest = pInitialMin;
  double sum = 0.0;
  for (std::int64_t i = 0; i < pJob.Count(); ++i) {
    const std::int64_t base = TableIndex(pJob.fBase[i], found.fBaseMin, found.fBaseMax);
    const std::int64_t detail = TableIndex(pJob.fDetail[i], found.fDetailMin, found.fDetailMax);
    const float y = pJob.fBaseTable[base] * pJob.fDetailTable[detail];
    pJob.fPixels[i].fY = y;
    if (y > largest) {
      largest = y;
    } else if (y < smallest) {  // "else": a value that raises the maximum is not tested here
      smallest = y;
    }
    sum += y;
  }
  FindPoints(pJob, smallest, largest, sum);
}

void Phase2(sJob& pJob) {
  sStatistics& found = pJob.fStatistics;
  const float s = static_cast<float>(pJob.fValues.fStrength / 100.0);
  const float k = s > 0.0f ? 1.0f - s : 1.0f - 3.0f * s;
  const double compression = pJob.fValues.fToneCompression;
  const bool compress = compression > 0.0;
  pJob.fBaseTable =
      ToneTable(found.fBaseMin, found.fBaseMax, k, compress, found.fBaseMean, compression / 20.0 + 0.05);
  pJob.fDetailTable = ToneTable(found.fDetailMin, found.fDetailMax, 1.0f, compress,
                                found.fDetailMeanMagnitude, compression / 50.0 + 0.01);
  if (!(found.fBaseMax - found.fBaseMin > 0.0f)) return;
  if (!(found.fDetailMax - found.fDetailMin > 0.0f)) return;
  const float baseLargest = LargestOf(pJob.fBaseTable);
  const float detailLargest = LargestOf(pJob.fDetailTable);
  found.fExposureScale = ExposureScale(k, found.fMaxY);
  Log(pJob.fLog,
      "GlobalContrast Log10: %1.2f -> GlobalOutMax: %1.2f (vs orig: %1.2f  exposure: %1.2f)  - DetailOutMax: "
      " %1.2f (vs DetailAverage: %1.2f)\n",
      k, baseLargest, Power(10.0, found.fLogMaxY), 1.0 / found.fExposureScale, detailLargest,
      Power(10.0, found.fDetailMeanMagnitude));
  MapLuminance(pJob, baseLargest * detailLargest);
}

// ---- Final rendering: stretch, colour, contrast, output space, encoding ----

float ContrastPosition(const sEngineValues& pValues) {
  const float position = (20.0f + 100.0f) / 200.0f;
  if (!(pValues.fStrength >= 0.0f)) return position;
  return std::min(pValues.fStrength * 0.35f / 100.0f + position, 1.0f);
}

float Stretched(float pY, const sStatistics& pStatistics) {
  const float black = pStatistics.fBlack, white = pStatistics.fWhite;
  const float factor = white > black ? 1.0f / (white - black) : 1.0f;
  if (factor == 1.0f) return pY * pStatistics.fExposureScale;
  const float stretched = (pY - black) * factor;
  return stretched > 0.0f ? stretched : 0.0f;
}

std::vector<std::uint16_t> FinalRendering(const sJob& pJob, int pOutputBits, int pColorSpace) {
  const tMatrix m = Product(XyzD50ToRgb(pColorSpace), RgbToXyzD50(kProPhoto));
  const tList<std::uint16_t>& encoding = EncodingTable(pColorSpace);
  const tList<float> toneCurve = ToneCurve(ContrastPosition(pJob.fValues));
  const tList<sHexcone> hues = HueTable();
  std::vector<std::uint16_t> bgr;
  bgr.reserve(3 * pJob.fPixels.size());
  for (const sPixel& pixel : pJob.fPixels) {
    const float luminance = Stretched(pixel.fY, pJob.fStatistics);
    const float lo = pixel.fMin * luminance;
    const float span = pixel.fMax * luminance - lo;
    float rgb[3];
    for (int c = 0; c < 3; ++c) rgb[c] = toneCurve[Index16(span * hues[pixel.fHue].fRGB[c] + lo)];
    for (int c = 2; c >= 0; --c) {
      const float linear = m[3 * c] * rgb[0] + m[3 * c + 1] * rgb[1] + m[3 * c + 2] * rgb[2];
      const std::uint16_t code = encoding[Index16(linear)];
      bgr.push_back(pOutputBits == 8 ? static_cast<std::uint16_t>(code >> 8) : code);
    }
  }
  return bgr;
}

}  // namespace

sPicture ToneMapXYZ(int pWidth, int pHeight, const std::vector<float>& pXYZ, const sEngineValues& pValues,
                    int pOutputBits, int pColorSpace, std::string* pLog) {
  sJob job{.fWidth = pWidth, .fHeight = pHeight, .fValues = pValues, .fLog = pLog};
  Prepare(job, pXYZ);
  Phase1(job);
  Phase2(job);
  return {FinalRendering(job, pOutputBits, pColorSpace), job.fStatistics};
}

}  // namespace Reference
