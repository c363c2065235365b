#include "export/PixelImport.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/BitmapRows.h"
#include "engine/kernels/Kernels.h"
#include "export/HostLayout.h"

namespace {

/// Linear light of each code. The divisor is the number of codes: the brightest one decodes to just below 1.
std::vector<float> GammaTable(int pMax, double pGamma) {
  std::vector<float> table(static_cast<std::size_t>(pMax) + 1);
  std::vector<double> light(table.size());
  const double step = 1.0 / (pMax + 1);
  for (int i = 0; i <= pMax; ++i) light[static_cast<std::size_t>(i)] = i * step;
  TmEngine::Kernels().fPowRow(light.data(), pGamma, light.data(), pMax + 1);
  for (std::size_t i = 0; i < table.size(); ++i) {
    const float value = static_cast<float>(light[i]);
    table[i] = value > 1.0f ? 1.0f : value;
  }
  return table;
}

template <class tSample>
void ImportSamples(const tm_quorvane_image& pImage, const std::vector<float>& pTable,
                   const unsigned char* pFrom, TmEngine::cBitmapXYZ32& pTo) {
  const sHostChannels channels = HostChannels(pImage);
  const std::ptrdiff_t step = pImage.samples_per_pixel;
  std::ptrdiff_t base = 0;
  for (int y = 0; y < pImage.height; ++y) {
    float* to = TmEngine::RowsOf(pTo).Row(y);
    for (int x = 0; x < pImage.width; ++x, base += step, to += 3) {
      to[0] = pTable[LoadSample<tSample>(pFrom, base + channels.fFirst)];
      to[1] = pTable[LoadSample<tSample>(pFrom, base + channels.fMiddle)];
      to[2] = pTable[LoadSample<tSample>(pFrom, base + channels.fThird)];
    }
  }
}

/// Shared-exponent pixels (G. Ward, "Real pixels", Graphics Gems II): mantissa * 2^(exponent - 136), exponent
/// 0 is black. Each row holds four planes. The smallest exponents give denormals.
void ImportRgbe(const tm_quorvane_image& pImage, const unsigned char* pFrom, TmEngine::cBitmapXYZ32& pTo) {
  std::array<float, 256> scale;
  for (int e = 0; e < 256; ++e)
    scale[static_cast<std::size_t>(e)] = static_cast<float>(std::ldexp(1.0, e - 136));
  scale[0] = 0.0f;
  const std::ptrdiff_t width = pImage.width;
  for (int y = 0; y < pImage.height; ++y, pFrom += 4 * width) {
    float* to = TmEngine::RowsOf(pTo).Row(y);
    for (std::ptrdiff_t x = 0; x < width; ++x, to += 3) {
      const float factor = scale[pFrom[3 * width + x]];
      for (int k = 0; k < 3; ++k) to[k] = static_cast<float>(pFrom[k * width + x]) * factor;
    }
  }
}

}  // namespace

void ImportPixels(const tm_quorvane_image& pImage, double pGamma, const void* pInputPixels,
                  TmEngine::cBitmapXYZ32& pTo) {
  const auto* from = static_cast<const unsigned char*>(pInputPixels);
  switch (pImage.input_bits) {
    case 8:
      return ImportSamples<std::uint8_t>(pImage, GammaTable(255, pGamma), from, pTo);
    case 16:
      return ImportSamples<std::uint16_t>(pImage, GammaTable(65535, pGamma), from, pTo);
    default:
      return ImportRgbe(pImage, from, pTo);
  }
}
