#include "photo/picture/ResultAlpha.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapXYZ32.h"

namespace Photo {
namespace {

constexpr std::uint64_t kOpaque = 65535;

/// Alpha as it is written beside samples of this type, and back.
template <class tSample>
constexpr std::uint64_t kStep = sizeof(tSample) == 1 ? 257 : 1;
template <class tSample>
std::uint64_t NarrowAlpha(std::uint16_t pAlpha) {
  return (pAlpha + kStep<tSample> / 2) / kStep<tSample>;
}

template <class tSample>
std::int64_t Divide(cResultPixels& pResult, std::vector<std::uint16_t>& pAlpha) {
  constexpr std::uint64_t kFull = std::numeric_limits<tSample>::max();
  std::int64_t raised = 0;
  auto stored = pAlpha.begin();
  for (int y = 0; y < pResult.GetHeight(); ++y) {
    auto* pixel = reinterpret_cast<tSample*>(pResult.GetRow(y));
    for (int x = 0; x < pResult.GetWidth(); ++x, ++stored, pixel += 3) {
      const std::uint64_t largest = *std::max_element(pixel, pixel + 3);
      std::uint64_t alpha = NarrowAlpha<tSample>(*stored);
      if (largest > alpha) {
        ++raised;
        alpha = largest;
        *stored = static_cast<std::uint16_t>(alpha * kStep<tSample>);
      }
      if (alpha == 0 || alpha == kFull) continue;
      for (int i = 0; i < 3; ++i) pixel[i] = static_cast<tSample>((pixel[i] * kFull + alpha / 2) / alpha);
    }
  }
  return raised;
}

/// pColour: 16 bits a sample.
template <class tSample>
void Blend(const std::array<std::uint64_t, 3>& pColour, bool pIsPremultiplied,
           const std::vector<std::uint16_t>& pAlpha, cResultPixels& pResult) {
  auto alpha = pAlpha.begin();
  for (int y = 0; y < pResult.GetHeight(); ++y) {
    auto* pixel = reinterpret_cast<tSample*>(pResult.GetRow(y));
    for (int x = 0; x < pResult.GetWidth(); ++x, ++alpha, pixel += 3) {
      if (*alpha == kOpaque) continue;
      for (std::size_t i = 0; i < 3; ++i) {
        const std::uint64_t own = pixel[i] * kStep<tSample> * (pIsPremultiplied ? kOpaque : *alpha);
        const std::uint64_t sum = own + (kOpaque - *alpha) * pColour[i];
        const std::uint64_t unit = kOpaque * kStep<tSample>;
        pixel[i] = static_cast<tSample>(
            std::min<std::uint64_t>((sum + unit / 2) / unit, std::numeric_limits<tSample>::max()));
      }
    }
  }
}

/// The codes of a colour of sRGB in another space, 16 bits.
std::array<std::uint64_t, 3> ConvertColour(const std::array<std::uint8_t, 3>& pColour,
                                           TmEngine::eColorSpaceID pSpace) {
  TmEngine::cBitmapBGR16 stated(1, 1, TmEngine::eColorSpaceID_sRGB);
  for (std::size_t i = 0; i < 3; ++i) {
    stated.GetBGR16Data()[2 - i] = static_cast<unsigned short>(pColour[i] * 257);
  }
  TmEngine::cBitmapXYZ32 light(1, 1);
  stated.ToXYZ32(&light);
  TmEngine::cBitmapBGR16 coded(1, 1, pSpace);
  coded.FromXYZ32(&light);
  const unsigned short* const samples =
      pSpace == TmEngine::eColorSpaceID_sRGB ? stated.GetBGR16Data() : coded.GetBGR16Data();
  return {samples[2], samples[1], samples[0]};
}

}  // namespace

std::int64_t DivideByAlpha(cResultPixels& pResult, std::vector<std::uint16_t>& pAlpha) {
  return pResult.GetBitDepth() == 8 ? Divide<std::uint8_t>(pResult, pAlpha)
                                    : Divide<std::uint16_t>(pResult, pAlpha);
}

void LayOver(const std::array<std::uint8_t, 3>& pColour, TmEngine::eColorSpaceID pSpace,
             bool pIsPremultiplied, const std::vector<std::uint16_t>& pAlpha, cResultPixels& pResult) {
  const auto blend = pResult.GetBitDepth() == 8 ? Blend<std::uint8_t> : Blend<std::uint16_t>;
  blend(ConvertColour(pColour, pSpace), pIsPremultiplied, pAlpha, pResult);
}

}  // namespace Photo
