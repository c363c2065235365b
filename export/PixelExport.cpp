#include "export/PixelExport.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "engine/base/LogLine.h"
#include "export/HostLayout.h"

namespace {

/// Copies a blue, green, red row unchanged. The host's row may be shorter than the picture's, but not
/// negative; what lies between its last pixel and its next row is padding, which stays.
void CopyRow(const tm_quorvane_image& pImage, const unsigned char* pFrom, std::ptrdiff_t pY,
             unsigned char* pTo) {
  const std::ptrdiff_t width = pImage.width;
  const std::ptrdiff_t sampleBytes = pImage.output_bits / 8;
  const std::ptrdiff_t packedBytes = width * 3 * sampleBytes;
  const std::ptrdiff_t pixelsBytes = width * pImage.samples_per_pixel * sampleBytes;
  const std::ptrdiff_t rowBytes = pImage.output_row_pitch * sampleBytes;
  const std::ptrdiff_t copied = std::min({packedBytes, pixelsBytes, rowBytes});
  std::memcpy(pTo + pY * rowBytes, pFrom, static_cast<std::size_t>(copied));
}

/// Turns blue, green, red back into the host's order.
template <class tSample>
void ExchangeSamples(const tm_quorvane_image& pImage, const unsigned char* pFrom, std::ptrdiff_t pY,
                     unsigned char* pTo) {
  const sHostChannels channels = HostChannels(pImage);
  std::ptrdiff_t to = pY * pImage.output_row_pitch;
  for (std::ptrdiff_t x = 0; x < pImage.width; ++x, to += pImage.samples_per_pixel) {
    StoreSample(pTo, to + channels.fFirst, LoadSample<tSample>(pFrom, 3 * x + 2));
    StoreSample(pTo, to + channels.fMiddle, LoadSample<tSample>(pFrom, 3 * x + 1));
    StoreSample(pTo, to + channels.fThird, LoadSample<tSample>(pFrom, 3 * x));
  }
}

void LogSampledPixels(const tm_quorvane_image& pImage, const TmEngine::sSampleRow& pRow, int pY) {
  const int stepY = pImage.height / 2;
  const int stepX = pImage.width / 2;
  if (stepY == 0 || stepX == 0 || pY % stepY != 0) return;
  const auto* const samples = static_cast<const unsigned char*>(pRow.fSamples);
  const int blue = pRow.fRedFirst ? 2 : 0;
  for (std::ptrdiff_t x = 0; x < pImage.width; x += stepX) {
    const auto high = [=](int pSample) { return LoadSample<std::uint16_t>(samples, 3 * x + pSample) >> 8; };
    TmEngine::LogLine("%d, %d  - %d %d %d\n", static_cast<int>(x), pY, high(blue), high(1), high(2 - blue));
  }
}

/// Whether the host's rows are what the engine writes: three samples per pixel, long enough for all, and
/// aligned.
bool TakesRows(const tm_quorvane_image& pImage, const void* pPixels) {
  const bool isAligned = pImage.output_bits == 8 || (reinterpret_cast<std::uintptr_t>(pPixels) & 1) == 0;
  return isAligned && pImage.samples_per_pixel == 3 &&
         pImage.output_row_pitch >= std::ptrdiff_t{3} * pImage.width;
}

}  // namespace

cHostSink::cHostSink(const tm_quorvane_image& pImage, TmEngine::eColorSpaceID pID, void* pPixels)
    : fImage(pImage),
      fColorSpace(TmEngine::cColorSpace::FromID(pID)),
      fPixels(static_cast<unsigned char*>(pPixels)),
      fIsDirect(TakesRows(pImage, pPixels)) {}

TmEngine::sSampleRow cHostSink::BeginRow(int pY) {
  if (!fIsDirect) {
    fRow.resize(static_cast<std::size_t>(fImage.width) * 3);  // once, when the renderer could take that width
    return {fRow.data(), false};
  }
  const std::ptrdiff_t rowBytes = std::ptrdiff_t{fImage.output_row_pitch} * (fImage.output_bits / 8);
  return {fPixels + pY * rowBytes, fImage.reversed_order == 0};
}

void cHostSink::EndRow(int pY) {
  const bool isLogged = fImage.reversed_order == 0 && fImage.output_bits == 16;
  if (fIsDirect) {
    if (isLogged) LogSampledPixels(fImage, BeginRow(pY), pY);
    return;
  }
  const auto* const row = reinterpret_cast<const unsigned char*>(fRow.data());
  if (fImage.reversed_order != 0) return CopyRow(fImage, row, pY, fPixels);
  if (fImage.output_bits == 8) return ExchangeSamples<std::uint8_t>(fImage, row, pY, fPixels);
  ExchangeSamples<std::uint16_t>(fImage, row, pY, fPixels);
  LogSampledPixels(fImage, BeginRow(pY), pY);
}
