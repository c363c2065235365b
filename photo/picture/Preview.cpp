#include "photo/picture/Preview.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "engine/image/BitmapRows.h"
#include "photo/picture/Alpha.h"

namespace Photo {
namespace {

/// What an area gathers: light times opacity (unless it is premultiplied), and opacity.
struct sGathered {
  double fLight[3] = {};
  double fOpacity = 0.0;

  void Add(const sGathered& pOther, double pShare) {
    for (int i = 0; i < 3; ++i) fLight[i] += pShare * pOther.fLight[i];
    fOpacity += pShare * pOther.fOpacity;
  }
};

/// Where a pixel of the long axis falls on the short one: pFirst of it on fTo, the rest on the next.
struct sSpan {
  std::size_t fTo;
  double fFirst;
  double fRest;
};

std::vector<sSpan> MakePlaces(int pFrom, int pTo) {
  const double scale = static_cast<double>(pTo) / pFrom;
  std::vector<sSpan> places;
  for (int i = 0; i < pFrom; ++i) {
    const int to = std::min(static_cast<int>(i * scale), pTo - 1);
    const double first = std::clamp(to + 1 - i * scale, 0.0, scale);
    places.push_back({static_cast<std::size_t>(to), first, to + 1 < pTo ? scale - first : 0.0});
  }
  return places;
}

// All pixels of an area may be transparent: then each adds alike, and so little that it never shows
// elsewhere.
constexpr double kLeastOpacity = 1e-9;

sGathered Weigh(const float* pPixel, double pOpacity, bool pIsPremultiplied) {
  if (pIsPremultiplied) {
    return {{static_cast<double>(pPixel[0]), static_cast<double>(pPixel[1]), static_cast<double>(pPixel[2])},
            pOpacity};
  }
  const double opacity = pOpacity + kLeastOpacity;
  return {{opacity * static_cast<double>(pPixel[0]), opacity * static_cast<double>(pPixel[1]),
           opacity * static_cast<double>(pPixel[2])},
          opacity};
}

/// Adds one row of the picture to a row of the reduced one.
void GatherRow(const sPicture& pFrom, int pY, const std::vector<sSpan>& pPlaces,
               std::vector<sGathered>& pTo) {
  const float* pixel = GetRow(pFrom, pY);
  const std::size_t first = static_cast<std::size_t>(pY) * pPlaces.size();
  for (std::size_t x = 0; x < pPlaces.size(); ++x, pixel += 3) {
    const sSpan& place = pPlaces[x];
    const double opacity = pFrom.fAlpha.empty() ? 1.0 : pFrom.fAlpha[first + x] / 65535.0;
    const sGathered weighed = Weigh(pixel, opacity, pFrom.fIsPremultiplied);
    pTo[place.fTo].Add(weighed, place.fFirst);
    if (place.fRest > 0.0) pTo[place.fTo + 1].Add(weighed, place.fRest);
  }
}

void FinishRow(const std::vector<sGathered>& pFrom, int pY, sPicture& pTo) {
  float* pixel = GetRow(pTo, pY);
  for (std::size_t x = 0; x < pFrom.size(); ++x, pixel += 3) {
    const double weight = pTo.fIsPremultiplied ? 1.0 : pFrom[x].fOpacity;
    for (int i = 0; i < 3; ++i) pixel[i] = static_cast<float>(pFrom[x].fLight[i] / weight);
    if (pTo.fAlpha.empty()) continue;
    const double alpha = std::clamp(pFrom[x].fOpacity * 65535.0, 0.0, 65535.0);
    pTo.fAlpha[static_cast<std::size_t>(pY) * pFrom.size() + x] =
        static_cast<std::uint16_t>(std::lround(alpha));
  }
}

/// Walks down the picture; a row at the border of two reduced ones goes to both.
void Reduce(const sPicture& pFrom, sPicture& pTo) {
  const auto width = static_cast<std::size_t>(pTo.fBitmap->GetWidth());
  const auto across = MakePlaces(pFrom.fBitmap->GetWidth(), pTo.fBitmap->GetWidth());
  const auto down = MakePlaces(pFrom.fBitmap->GetHeight(), pTo.fBitmap->GetHeight());
  std::vector<sGathered> row(width), sum(width), next(width);
  std::size_t at = 0;
  const auto finish = [&] {
    FinishRow(sum, static_cast<int>(at++), pTo);
    sum.swap(next);
    next.assign(width, {});
  };
  for (std::size_t y = 0; y < down.size(); ++y) {
    if (down[y].fTo > at) finish();
    row.assign(width, {});
    GatherRow(pFrom, static_cast<int>(y), across, row);
    for (std::size_t x = 0; x < width; ++x) {
      sum[x].Add(row[x], down[y].fFirst);
      next[x].Add(row[x], down[y].fRest);
    }
  }
  finish();
}

}  // namespace

std::unique_ptr<TmEngine::cBitmapXYZ32> TakeSample(const sPicture& pFrom) {
  constexpr int kLongSide = 1024;
  const int width = pFrom.fBitmap->GetWidth();
  const int height = pFrom.fBitmap->GetHeight();
  const double step = std::max(static_cast<double>(std::max(width, height)) / kLongSide, 1.0);
  std::unique_ptr<TmEngine::cBitmapXYZ32> sample =
      MakeBitmap(static_cast<int>(std::ceil(width / step)), static_cast<int>(std::ceil(height / step)));
  const auto at = [step](int pTo, int pSide) {
    return std::min(static_cast<int>((pTo + 0.5) * step), pSide - 1);
  };
  for (int y = 0; y < sample->GetHeight(); ++y) {
    const float* const from = GetRow(pFrom, at(y, height));
    float* to = TmEngine::RowsOf(*sample).Row(y);
    for (int x = 0; x < sample->GetWidth(); ++x, to += 3) {
      std::copy_n(from + std::ptrdiff_t{3} * at(x, width), 3, to);
    }
  }
  return sample;
}

sPicture ReducePicture(sPicture pPicture, int pLongSide) {
  const int width = pPicture.fBitmap->GetWidth();
  const int height = pPicture.fBitmap->GetHeight();
  const int longSide = std::max(width, height);
  if (longSide <= pLongSide) return pPicture;
  const auto shorten = [&](int pSide) {
    return static_cast<int>(std::max(std::lround(static_cast<double>(pSide) * pLongSide / longSide), 1L));
  };
  HideTransparent(pPicture);  // the sample is of what is seen
  sPicture reduced;
  reduced.fBitmap = MakeBitmap(shorten(width), shorten(height));
  reduced.fAlpha.resize(pPicture.fAlpha.empty() ? 0
                                                : static_cast<std::size_t>(shorten(width)) *
                                                      static_cast<std::size_t>(shorten(height)));
  reduced.fIsPremultiplied = pPicture.fIsPremultiplied;
  Reduce(pPicture, reduced);
  pPicture.fSample = TakeSample(pPicture);
  pPicture.fBitmap = std::move(reduced.fBitmap);
  pPicture.fAlpha = std::move(reduced.fAlpha);
  return pPicture;
}

}  // namespace Photo
