#include "export/PixelImport.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "engine/kernels/Kernels.h"
#include "export/HostLayout.h"

namespace {

/// Linear light of each code. The divisor is the number of codes: the brightest one decodes to just below 1.
std::vector<float> GammaTable(int pMax, double pGamma) {
  constexpr int kRun = 256;
  std::vector<float> table(static_cast<std::size_t>(pMax) + 1);
  const double step = 1.0 / (pMax + 1);
  float* to = table.data();
  for (int start = 0; start <= pMax; start += kRun, to += kRun) {
    double light[kRun];
    for (int i = 0; i < kRun; ++i) light[i] = (start + i) * step;
    TmEngine::Kernels().fPowRow(light, pGamma, light, kRun);
    for (int i = 0; i < kRun; ++i) to[i] = std::min(static_cast<float>(light[i]), 1.0f);
  }
  return table;
}

/// Shared-exponent pixels (G. Ward, "Real pixels", Graphics Gems II): mantissa * 2^(exponent - 136), exponent
/// 0 is black. The smallest exponents give denormals.
std::vector<float> ExponentTable() {
  std::vector<float> table(256);
  for (int e = 1; e < 256; ++e)
    table[static_cast<std::size_t>(e)] = static_cast<float>(std::ldexp(1.0, e - 136));
  return table;
}

std::vector<float> TableOf(int pInputBits, double pGamma) {
  if (pInputBits == 32) return ExponentTable();
  return GammaTable(pInputBits == 8 ? 255 : 65535, pGamma);
}

/// pFrom: the first sample of the run.
template <class tSample>
void DecodeSamples(const unsigned char* pFrom, const tm_quorvane_image& pImage, const float* pTable,
                   int pCount, float* pR, float* pG, float* pB) {
  const sHostChannels channels = HostChannels(pImage);
  std::ptrdiff_t base = 0;
  for (int i = 0; i < pCount; ++i, base += pImage.samples_per_pixel) {
    pR[i] = pTable[LoadSample<tSample>(pFrom, base + channels.fFirst)];
    pG[i] = pTable[LoadSample<tSample>(pFrom, base + channels.fMiddle)];
    pB[i] = pTable[LoadSample<tSample>(pFrom, base + channels.fThird)];
  }
}

/// pFrom: the first mantissa of the run. A row holds four planes, of which the last are the exponents.
void DecodeRgbe(const unsigned char* pFrom, std::ptrdiff_t pWidth, const float* pTable, int pCount, float* pR,
                float* pG, float* pB) {
  float factor[TmEngine::kRunLength];
  for (int i = 0; i < pCount; ++i) factor[i] = pTable[pFrom[3 * pWidth + i]];
  for (int i = 0; i < pCount; ++i) pR[i] = static_cast<float>(pFrom[i]) * factor[i];
  for (int i = 0; i < pCount; ++i) pG[i] = static_cast<float>(pFrom[pWidth + i]) * factor[i];
  for (int i = 0; i < pCount; ++i) pB[i] = static_cast<float>(pFrom[2 * pWidth + i]) * factor[i];
}

}  // namespace

cHostSource::cHostSource(const tm_quorvane_image& pImage, double pGamma, const TmEngine::cMatrix33& pRGBToXYZ,
                         const void* pPixels)
    : cHostSource(pImage, pGamma, pRGBToXYZ, pPixels,
                  std::ptrdiff_t{pImage.width} * pImage.samples_per_pixel * (pImage.input_bits / 8)) {}

cHostSource::cHostSource(const tm_quorvane_image& pImage, double pGamma, const TmEngine::cMatrix33& pRGBToXYZ,
                         const void* pPixels, std::ptrdiff_t pRowBytes)
    : cRowSource(pImage.width, pImage.height),
      fImage(pImage),
      fRGBToXYZ(pRGBToXYZ),
      fPixels(static_cast<const unsigned char*>(pPixels)),
      fRowBytes(pRowBytes),
      fTable(TableOf(pImage.input_bits, pGamma)) {}

void cHostSource::ReadRun(int pY, int pX, int pCount, float* pToX, float* pToY, float* pToZ) const {
  const std::ptrdiff_t width = fImage.width;
  const unsigned char* const row = fPixels + pY * fRowBytes;
  const std::ptrdiff_t first = std::ptrdiff_t{pX} * fImage.samples_per_pixel;
  switch (fImage.input_bits) {
    case 8:
      DecodeSamples<std::uint8_t>(row + first, fImage, fTable.data(), pCount, pToX, pToY, pToZ);
      break;
    case 16:
      DecodeSamples<std::uint16_t>(row + 2 * first, fImage, fTable.data(), pCount, pToX, pToY, pToZ);
      break;
    default:
      DecodeRgbe(fPixels + 4 * width * pY + pX, width, fTable.data(), pCount, pToX, pToY, pToZ);
  }
  TmEngine::Kernels().fTransform(fRGBToXYZ.Elements(), pToX, pToY, pToZ, pCount);
}
