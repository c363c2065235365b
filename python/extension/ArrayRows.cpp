#include "python/extension/ArrayRows.h"

#include <algorithm>
#include <cstddef>

#include "photo/picture/Dither.h"

namespace Python {
namespace {

using TmEngine::cColorSpace;

tm_quorvane_image DescribeLayout(const sPixelArray& pPixels) {
  tm_quorvane_image image = {};
  image.width = pPixels.fWidth;
  image.height = pPixels.fHeight;
  image.samples_per_pixel = 3;
  image.input_bits = 8 * pPixels.SampleBytes();
  return image;
}

}  // namespace

cFloatRows::cFloatRows(const sPixelArray& pPixels, const Photo::sLinearLight& pLight)
    : cPictureRows(pPixels.fWidth, pPixels.fHeight, false), fPixels(pPixels), fLight(pLight) {}

bool cFloatRows::Read(int pY, float* pTo, std::uint16_t*) {
  ReadFloats(fPixels, pY, pTo);
  bool isDone = true;
  // in runs that stay in the processor's nearest cache
  for (int x = 0; x < GetWidth(); x += TmEngine::kRunLength) {
    const int count = std::min(TmEngine::kRunLength, GetWidth() - x);
    isDone = fLight.Take(pTo + std::ptrdiff_t{3} * x, count) && isDone;
  }
  return isDone;
}

cIntegerSource::cIntegerSource(const sPixelArray& pPixels, TmEngine::eColorSpaceID pSpace)
    : cRowSource(pPixels.fWidth, pPixels.fHeight), fPixels(pPixels) {
  constexpr int kSamples = 3;
  const unsigned char* pixels = pPixels.fPixels;
  std::ptrdiff_t rowBytes = pPixels.fRowStep;
  if (!pPixels.HasPackedRows()) {
    fRow.resize(static_cast<std::size_t>(kSamples * pPixels.SampleBytes()) *
                static_cast<std::size_t>(pPixels.fWidth));
    pixels = fRow.data();
    rowBytes = 0;
  }
  const std::unique_ptr<cColorSpace> space(cColorSpace::FromID(pSpace));
  const double gamma = pSpace == TmEngine::eColorSpaceID_ProPhotoRGB ? 1.8 : 2.2;
  fSource =
      std::make_unique<cHostSource>(DescribeLayout(pPixels), gamma, space->GetRGBToXYZ(), pixels, rowBytes);
}

void cIntegerSource::ReadRun(int pY, int pX, int pCount, float* pToX, float* pToY, float* pToZ) const {
  if (!fRow.empty() && pY != fY) {
    GatherRow(fPixels, pY, fRow.data());
    fY = pY;
  }
  fSource->ReadRun(pY, pX, pCount, pToX, pToY, pToZ);
}

cArraySink::cArraySink(const sPixelArray& pFrom, const sPixelArray& pTo, TmEngine::eColorSpaceID pSpace,
                       int pStart, bool pDithers)
    : fFrom(pFrom), fTo(pTo), fColorSpace(cColorSpace::FromID(pSpace)), fStart(pStart), fDithers(pDithers) {
  const auto width = static_cast<std::size_t>(pTo.fWidth);
  if (!pTo.HasPackedRows() || !pTo.IsAligned() || pStart != 0 || pDithers) fRow.resize(3 * width);
  if (pTo.fChannels == 4) fAlpha.resize(width);
}

TmEngine::sSampleRow cArraySink::BeginRow(int pY) {
  if (fRow.empty()) return {fTo.Row(pY), true};
  return {fRow.data(), true};
}

void cArraySink::EndRow(int pY) {
  if (!fAlpha.empty()) {
    GatherAlpha(fFrom, pY, fAlpha.data());
    ScatterAlpha(fAlpha.data(), fTo, pY);
  }
  if (fDithers) {
    auto* const bytes = reinterpret_cast<unsigned char*>(fRow.data());
    Photo::DitherRow(fRow.data(), fTo.fWidth, fStart, pY, bytes);
  }
  if (!fRow.empty()) ScatterRow(fRow.data(), fStart, fTo, pY);
}

}  // namespace Python
