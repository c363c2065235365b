#include "photo/picture/ResultPixels.h"

#include <algorithm>
#include <array>
#include <limits>
#include <new>

#include "engine/base/LargeBlock.h"
#include "engine/image/ImageRows.h"
#include "photo/picture/Dither.h"

namespace Photo {
namespace {

/// Reads the samples of a row in the other order.
template <class tSample>
void TurnRow(const unsigned char* pFrom, int pWidth, unsigned char* pTo) {
  const auto* from = reinterpret_cast<const tSample*>(pFrom);
  auto* to = reinterpret_cast<tSample*>(pTo);
  for (int x = 0; x < pWidth; ++x, from += 3, to += 3) {
    to[0] = from[2];
    to[1] = from[1];
    to[2] = from[0];
  }
}

/// Parts of rows, in samples: the pixels of one can be counted in 8 bits.
constexpr int kPart = 3 * 64;

/// 1 for the first sample of each pixel.
constexpr auto kIsFirst = [] {
  std::array<unsigned char, kPart> isFirst = {};
  for (std::size_t i = 0; i < kPart; i += 3) isFirst[i] = 1;
  return isFirst;
}();

/// Looks at three samples from every place on, whether a pixel begins there or not: of such loops the
/// compiler makes vectors.
template <class tSample>
void CountInPart(const tSample* pPart, int pSamples, sClippedPixels& pTo) {
  unsigned char isLight[kPart];
  unsigned char isFull[kPart];
  for (int i = 0; i < pSamples; ++i) {
    isLight[i] = pPart[i] != 0;
    isFull[i] = pPart[i] == std::numeric_limits<tSample>::max();
  }
  unsigned char lights = 0;
  unsigned char whites = 0;
  for (int i = 0; i < pSamples - 2; ++i) {
    const unsigned char isFirst = kIsFirst[static_cast<std::size_t>(i)];
    lights = static_cast<unsigned char>(lights + ((isLight[i] | isLight[i + 1] | isLight[i + 2]) & isFirst));
    whites = static_cast<unsigned char>(whites + ((isFull[i] | isFull[i + 1] | isFull[i + 2]) & isFirst));
  }
  pTo.fBlack += pSamples / 3 - lights;
  pTo.fWhite += whites;
}

/// Whether any of them is the least or the largest that there is.
template <class tSample>
bool HasExtreme(const tSample* pPart, int pSamples) {
  constexpr tSample kFull = std::numeric_limits<tSample>::max();
  tSample least = kFull;
  tSample largest = 0;
  for (int i = 0; i < pSamples; ++i) {
    least = pPart[i] < least ? pPart[i] : least;
    largest = pPart[i] > largest ? pPart[i] : largest;
  }
  return least == 0 || largest == kFull;
}

template <class tSample>
void CountClipped(const unsigned char* pRow, int pSamples, sClippedPixels& pTo) {
  const auto* const row = reinterpret_cast<const tSample*>(pRow);
  for (int start = 0; start < pSamples; start += kPart) {
    const int samples = std::min(kPart, pSamples - start);
    if (HasExtreme(row + start, samples)) CountInPart(row + start, samples, pTo);
  }
}

}  // namespace

cResultPixels::cResultPixels(int pWidth, int pHeight, int pBitDepth)
    : fWidth(pWidth), fHeight(pHeight), fBitDepth(pBitDepth == 8 ? 8 : 16) {
  fBlock.reset(static_cast<unsigned char*>(TmEngine::AllocLargeBlock(GetBytes())));
  if (fBlock == nullptr) throw std::bad_alloc();
}

cResultPixels::cResultPixels(const TmEngine::cBitmapLDR& pImage)
    : cResultPixels(pImage.GetWidth(), pImage.GetHeight(), pImage.GetBitDepth()) {
  const auto turn = fBitDepth == 8 ? TurnRow<unsigned char> : TurnRow<unsigned short>;
  for (int y = 0; y < fHeight; ++y) turn(TmEngine::PixelRow(pImage, y), fWidth, GetRow(y));
}

cResultSink::cResultSink(cResultPixels& pPixels, TmEngine::eColorSpaceID pColorSpace, int pStart,
                         bool pDithers)
    : fPixels(pPixels),
      fColorSpace(TmEngine::cColorSpace::FromID(pColorSpace)),
      fStart(pStart),
      fDithers(pDithers),
      fRow(pDithers      ? 2 * pPixels.GetRowBytes()
           : pStart != 0 ? pPixels.GetRowBytes()
                         : 0) {}

TmEngine::sSampleRow cResultSink::BeginRow(int pY) {
  return {fRow.empty() ? fPixels.GetRow(pY) : fRow.data(), true};
}

void cResultSink::EndRow(int pY) {
  unsigned char* const row = fPixels.GetRow(pY);
  if (fDithers) {
    DitherRow(reinterpret_cast<const std::uint16_t*>(fRow.data()), GetWidth(), fStart, pY, fRow.data());
  }
  if (!fRow.empty()) {
    const auto end = fRow.begin() + static_cast<std::ptrdiff_t>(fPixels.GetRowBytes());
    std::rotate_copy(fRow.begin(), end - std::ptrdiff_t{3} * fPixels.GetBitDepth() / 8 * fStart, end, row);
  }
  const auto count = fPixels.GetBitDepth() == 8 ? CountClipped<unsigned char> : CountClipped<unsigned short>;
  count(row, 3 * fPixels.GetWidth(), fClipped);
}

}  // namespace Photo
