#include "photo/picture/Alpha.h"

#include <algorithm>

namespace Photo {
namespace {

/// The visible pixels in the order of rows, walked once.
class cVisiblePixels {
 public:
  explicit cVisiblePixels(const sPicture& pPicture) : fPicture(pPicture) { SkipTransparent(); }

  /// pIndex: not less than before, and less than the number of visible pixels.
  const float* Get(std::int64_t pIndex) {
    for (; fIndex < pIndex; ++fIndex) {
      ++fAt;
      SkipTransparent();
    }
    const auto width = static_cast<std::size_t>(fPicture.fBitmap->GetWidth());
    return GetRow(fPicture, static_cast<int>(fAt / width)) + 3 * (fAt % width);
  }

 private:
  void SkipTransparent() {
    while (fAt < fPicture.fAlpha.size() && fPicture.fAlpha[fAt] == 0) ++fAt;
  }

  const sPicture& fPicture;
  std::size_t fAt = 0;
  std::int64_t fIndex = 0;
};

/// Calls pDo(pixel, alpha) for every pixel, alpha as a number from 0 to 1; while it returns true.
template <class tDo>
bool ForEachPixel(const sPicture& pPicture, const tDo& pDo) {
  auto alpha = pPicture.fAlpha.cbegin();
  for (int y = 0; y < pPicture.fBitmap->GetHeight(); ++y) {
    float* pixel = GetRow(pPicture, y);
    for (int x = 0; x < pPicture.fBitmap->GetWidth(); ++x, ++alpha, pixel += 3) {
      if (!pDo(pixel, static_cast<float>(*alpha) / 65535.0f)) return false;
    }
  }
  return true;
}

/// The light of covered pixels, which are those with half of the largest alpha or more.
struct sCoveredLight {
  float fBrightest = 0.0f;  ///< Divided by alpha.
  float fMedian = 0.0f;     ///< Median of a sample of the pixels.

  explicit sCoveredLight(const sPicture& pPicture) {
    constexpr std::size_t kSample = 100000;
    const std::uint16_t largest = *std::max_element(pPicture.fAlpha.begin(), pPicture.fAlpha.end());
    const float least = std::max(static_cast<float>(largest) / 65535.0f / 2.0f, 0.5f / 65535.0f);
    const std::size_t step = pPicture.fAlpha.size() / kSample + 1;
    std::vector<float> sample;
    std::size_t covered = 0;
    ForEachPixel(pPicture, [&](const float* pPixel, float pAlpha) {
      if (pAlpha < least) return true;
      const float light = GetLight(pPixel) / pAlpha;
      fBrightest = std::max(fBrightest, light);
      if (covered++ % step == 0) sample.push_back(light);
      return true;
    });
    if (sample.empty()) return;
    const auto middle = sample.begin() + static_cast<std::ptrdiff_t>(sample.size() / 2);
    std::nth_element(sample.begin(), middle, sample.end());
    fMedian = *middle;
  }

  static float GetLight(const float* pPixel) { return std::max({pPixel[0], pPixel[1], pPixel[2]}); }

  /// Whether a pixel has no more light than a covered one lets through. Alpha is known to half a step; what
  /// is a thousand times darker than the picture is no light, but what filters leave behind.
  bool Explains(const float* pPixel, float pAlpha) const {
    constexpr float kHalfStep = 0.5f / 65535.0f;
    const float light = GetLight(pPixel);
    if (pAlpha == 0.0f) return light <= 1e-3f * fMedian;
    return light <= 2.0f * (pAlpha + kHalfStep) * fBrightest;
  }
};

}  // namespace

void SettleAlpha(sPicture& pPicture) {
  if (!pPicture.fIsPremultiplied || pPicture.fHasOwnLight) return;
  const sCoveredLight covered(pPicture);
  pPicture.fIsPremultiplied = !ForEachPixel(
      pPicture, [&](const float* pPixel, float pAlpha) { return covered.Explains(pPixel, pAlpha); });
  if (pPicture.fIsPremultiplied) return;
  ForEachPixel(pPicture, [](float* pPixel, float pAlpha) {
    for (int i = 0; i < 3 && pAlpha > 0.0f && pAlpha < 1.0f; ++i) pPixel[i] /= pAlpha;
    return true;
  });
}

void HideTransparent(sPicture& pPicture) {
  const auto pixels = static_cast<std::int64_t>(pPicture.fAlpha.size());
  const std::int64_t hidden = std::count(pPicture.fAlpha.begin(), pPicture.fAlpha.end(), 0);
  if (pPicture.fIsPremultiplied || hidden == 0 || hidden == pixels) return;
  cVisiblePixels visible(pPicture);
  std::int64_t k = 0;
  auto alpha = pPicture.fAlpha.cbegin();
  for (int y = 0; y < pPicture.fBitmap->GetHeight(); ++y) {
    float* pixel = GetRow(pPicture, y);
    for (int x = 0; x < pPicture.fBitmap->GetWidth(); ++x, ++alpha, pixel += 3) {
      if (*alpha == 0) std::copy_n(visible.Get(k++ * (pixels - hidden) / hidden), 3, pixel);
    }
  }
}

void BlackenTransparent(cResultPixels& pResult, const sPicture& pPicture) {
  if (pPicture.fAlpha.empty() || pPicture.fIsPremultiplied) return;
  const int bytes = 3 * pResult.GetBitDepth() / 8;
  auto alpha = pPicture.fAlpha.cbegin();
  for (int y = 0; y < pResult.GetHeight(); ++y) {
    unsigned char* pixel = pResult.GetRow(y);
    for (int x = 0; x < pResult.GetWidth(); ++x, ++alpha, pixel += bytes) {
      if (*alpha == 0) std::fill_n(pixel, bytes, static_cast<unsigned char>(0));
    }
  }
}

}  // namespace Photo
