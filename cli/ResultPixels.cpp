#include "cli/ResultPixels.h"

#include <algorithm>
#include <limits>
#include <new>

#include "engine/ImageRows.h"
#include "engine/LargeBlock.h"

namespace Cli {
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

/// Few pixels of a picture are clipped, if any: most parts of a row need no more than their extremes, which
/// the processor finds for many samples at once.
template <class tSample>
void CountClipped(const unsigned char* pRow, int pSamples, sClippedPixels& pTo) {
  constexpr tSample kFull = std::numeric_limits<tSample>::max();
  constexpr int kPart = 3 * 64;
  const auto* const row = reinterpret_cast<const tSample*>(pRow);
  for (int start = 0; start < pSamples; start += kPart) {
    const int end = std::min(start + kPart, pSamples);
    tSample least = kFull;
    tSample largest = 0;
    for (int i = start; i < end; ++i) {
      least = row[i] < least ? row[i] : least;
      largest = row[i] > largest ? row[i] : largest;
    }
    if (least > 0 && largest < kFull) continue;
    for (int i = start; i < end; i += 3) {
      pTo.fBlack += (row[i] | row[i + 1] | row[i + 2]) == 0 ? 1 : 0;
      pTo.fWhite += std::max({row[i], row[i + 1], row[i + 2]}) == kFull ? 1 : 0;
    }
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

cResultSink::cResultSink(cResultPixels& pPixels, TmEngine::eColorSpaceID pColorSpace, int pStart)
    : fPixels(pPixels),
      fColorSpace(TmEngine::cColorSpace::FromID(pColorSpace)),
      fStartByte(std::ptrdiff_t{3} * pPixels.GetBitDepth() / 8 * pStart),
      fRow(pStart == 0 ? 0 : pPixels.GetRowBytes()) {}

TmEngine::sSampleRow cResultSink::BeginRow(int pY) {
  return {fRow.empty() ? fPixels.GetRow(pY) : fRow.data(), true};
}

void cResultSink::EndRow(int pY) {
  unsigned char* const row = fPixels.GetRow(pY);
  if (!fRow.empty()) std::rotate_copy(fRow.begin(), fRow.end() - fStartByte, fRow.end(), row);
  const auto count = fPixels.GetBitDepth() == 8 ? CountClipped<unsigned char> : CountClipped<unsigned short>;
  count(row, 3 * fPixels.GetWidth(), fClipped);
}

}  // namespace Cli
