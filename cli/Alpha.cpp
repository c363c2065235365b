#include "cli/Alpha.h"

#include <algorithm>

namespace Cli {
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

}  // namespace

void HideTransparent(sPicture& pPicture) {
  const auto pixels = static_cast<std::int64_t>(pPicture.fAlpha.size());
  const std::int64_t hidden = std::count(pPicture.fAlpha.begin(), pPicture.fAlpha.end(), 0);
  if (hidden == 0 || hidden == pixels) return;
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

void BlackenTransparent(cResultPixels& pResult, const std::vector<std::uint16_t>& pAlpha) {
  if (pAlpha.empty()) return;
  const int bytes = 3 * pResult.GetBitDepth() / 8;
  auto alpha = pAlpha.cbegin();
  for (int y = 0; y < pResult.GetHeight(); ++y) {
    unsigned char* pixel = pResult.GetRow(y);
    for (int x = 0; x < pResult.GetWidth(); ++x, ++alpha, pixel += bytes) {
      if (*alpha == 0) std::fill_n(pixel, bytes, static_cast<unsigned char>(0));
    }
  }
}

}  // namespace Cli
