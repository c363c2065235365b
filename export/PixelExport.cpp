#include "export/PixelExport.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "engine/cBitmapLDR.h"
#include "export/HostLayout.h"

namespace {

/// Copies blue, green, red rows as they stand. The host's row may be shorter than the picture's; what lies
/// between its last pixel and its next row is padding, which stays.
void CopyRows(const tm_quorvane_image& pImage, const TmEngine::cBitmapLDR& pFrom, unsigned char* pTo) {
  const std::ptrdiff_t width = pImage.width;
  const std::ptrdiff_t sampleBytes = pImage.output_bits / 8;
  const std::ptrdiff_t packedBytes = width * 3 * sampleBytes;
  const std::ptrdiff_t pixelsBytes = width * pImage.samples_per_pixel * sampleBytes;
  const std::ptrdiff_t rowBytes = pImage.output_row_pitch * sampleBytes;
  const std::ptrdiff_t copied = std::min({packedBytes, pixelsBytes, rowBytes});
  if (copied <= 0) return;
  const unsigned char* from = pFrom.GetBitmapData();
  if (rowBytes == packedBytes && copied == packedBytes && pFrom.GetStride() == packedBytes) {
    std::memcpy(pTo, from, static_cast<std::size_t>(packedBytes) * static_cast<std::size_t>(pImage.height));
    return;
  }
  for (std::ptrdiff_t y = 0; y < pImage.height; ++y) {
    std::memcpy(pTo + y * rowBytes, from + y * pFrom.GetStride(), static_cast<std::size_t>(copied));
  }
}

/// Turns blue, green, red back into the host's order.
template <class tSample>
void ExchangeSamples(const tm_quorvane_image& pImage, const TmEngine::cBitmapLDR& pFrom, unsigned char* pTo) {
  const sHostChannels channels = HostChannels(pImage);
  for (std::ptrdiff_t y = 0; y < pImage.height; ++y) {
    const unsigned char* from = pFrom.GetBitmapData() + y * pFrom.GetStride();
    std::ptrdiff_t to = y * pImage.output_row_pitch;
    for (std::ptrdiff_t x = 0; x < pImage.width; ++x, to += pImage.samples_per_pixel) {
      StoreSample(pTo, to + channels.fFirst, LoadSample<tSample>(from, 3 * x + 2));
      StoreSample(pTo, to + channels.fMiddle, LoadSample<tSample>(from, 3 * x + 1));
      StoreSample(pTo, to + channels.fThird, LoadSample<tSample>(from, 3 * x));
    }
  }
}

void LogSampledPixels(const tm_quorvane_image& pImage, const TmEngine::cBitmapLDR& pFrom) {
  const int stepY = pImage.height / 2;
  const int stepX = pImage.width / 2;
  if (stepY == 0 || stepX == 0) return;
  for (std::ptrdiff_t y = 0; y < pImage.height; y += stepY) {
    const unsigned char* row = pFrom.GetBitmapData() + y * pFrom.GetStride();
    for (std::ptrdiff_t x = 0; x < pImage.width; x += stepX) {
      const auto high = [=](int pSample) { return LoadSample<std::uint16_t>(row, 3 * x + pSample) >> 8; };
      std::fprintf(stderr, "%d, %d  - %d %d %d\n", static_cast<int>(x), static_cast<int>(y), high(0), high(1),
                   high(2));
    }
  }
}

}  // namespace

void ExportPixels(const tm_quorvane_image& pImage, const TmEngine::cBitmapLDR& pFrom, void* pOutputPixels) {
  auto* to = static_cast<unsigned char*>(pOutputPixels);
  if (pImage.reversed_order != 0) return CopyRows(pImage, pFrom, to);
  if (pImage.output_bits == 8) return ExchangeSamples<std::uint8_t>(pImage, pFrom, to);
  ExchangeSamples<std::uint16_t>(pImage, pFrom, to);
  LogSampledPixels(pImage, pFrom);
}
