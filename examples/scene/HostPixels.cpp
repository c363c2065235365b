#include "examples/scene/HostPixels.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "examples/scene/Rgbe.h"

namespace Scene {
namespace {

using tBytes = std::vector<unsigned char>;

/// Integer samples hold the room's own range; what is brighter is clipped, as by a camera.
constexpr float kExposure = 0.35f;

template <class tSample>
void EncodePixel(const float* pFrom, unsigned char* pTo) {
  for (int i = 0; i < 3; ++i) {
    const float encoded = std::pow(std::min(pFrom[i] * kExposure, 1.0f), 1.0f / 2.2f);
    const auto sample = static_cast<tSample>(encoded * static_cast<float>(static_cast<tSample>(-1)));
    std::memcpy(pTo + static_cast<std::size_t>(i) * sizeof sample, &sample, sizeof sample);
  }
}

/// The picture's own pixels, each as pPixelBytes bytes one behind the other.
tBytes EncodePixels(const sHdrPicture& pPicture, int pBits, std::size_t pPixelBytes) {
  tBytes pixels(pPicture.fPixels.size() / 3 * pPixelBytes);
  const float* from = pPicture.fPixels.data();
  for (std::size_t at = 0; at < pixels.size(); at += pPixelBytes, from += 3) {
    unsigned char rgbe[4];
    switch (pBits) {
      case 8:
        EncodePixel<std::uint8_t>(from, &pixels[at]);
        break;
      case 16:
        EncodePixel<std::uint16_t>(from, &pixels[at]);
        break;
      default:
        ToRgbe(from, rgbe);
        std::memcpy(&pixels[at], rgbe, sizeof rgbe);
    }
  }
  return pixels;
}

/// Takes a row of pixels apart into planes of single bytes, which shared exponents lie in.
void SplitRow(const tBytes& pFrom, unsigned char* pTo) {
  const std::size_t width = pFrom.size() / 4;
  for (std::size_t i = 0; i < pFrom.size(); ++i) pTo[i % 4 * width + i / 4] = pFrom[i];
}

}  // namespace

std::vector<unsigned char> HostPixels(const sHdrPicture& pPicture, int pWidth, int pHeight, int pBits) {
  const std::size_t pixelBytes = pBits == 32 ? 4 : 3 * static_cast<std::size_t>(pBits) / 8;
  const tBytes tile = EncodePixels(pPicture, pBits, pixelBytes);
  const std::size_t tileBytes = static_cast<std::size_t>(pPicture.fWidth) * pixelBytes;
  tBytes row(static_cast<std::size_t>(pWidth) * pixelBytes);
  tBytes pixels(row.size() * static_cast<std::size_t>(pHeight));
  for (int y = 0; y < pHeight; ++y) {
    const unsigned char* from = &tile[static_cast<std::size_t>(y % pPicture.fHeight) * tileBytes];
    for (std::size_t at = 0; at < row.size(); at += tileBytes) {
      std::memcpy(&row[at], from, std::min(tileBytes, row.size() - at));
    }
    unsigned char* to = &pixels[static_cast<std::size_t>(y) * row.size()];
    if (pBits == 32) {
      SplitRow(row, to);
    } else {
      std::memcpy(to, row.data(), row.size());
    }
  }
  return pixels;
}

}  // namespace Scene
