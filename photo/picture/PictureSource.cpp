#include "photo/picture/PictureSource.h"

#include <chrono>
#include <cstddef>

namespace Cli {

cFileSource::cFileSource(cPictureRows& pRows)
    : cRowSource(pRows.GetWidth(), pRows.GetHeight()),
      fState{pRows, cLuminanceSampler::OfPart(pRows.GetWidth(), pRows.GetHeight()),
             std::vector<float>(std::size_t{3} * static_cast<std::size_t>(pRows.GetWidth()))} {}

void cFileSource::ReadRun(int pY, int pX, int pCount, float* pToX, float* pToY, float* pToZ) const {
  if (pY != fState.fY) ReadRow(pY);
  TmEngine::SplitPixels(fState.fRow.data() + std::ptrdiff_t{3} * pX, pCount, pToX, pToY, pToZ);
}

void cFileSource::ReadRow(int pY) const {
  const auto start = std::chrono::steady_clock::now();
  if (!fState.fRows.Read(pY, fState.fRow.data(), nullptr)) throw sNeedsWholePicture();
  fState.fY = pY;
  fState.fSampler.TakeRow(pY, fState.fRow.data(), nullptr);
  fState.fSeconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace Cli
