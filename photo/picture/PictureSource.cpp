#include "photo/picture/PictureSource.h"

#include <algorithm>
#include <chrono>
#include <cstddef>

namespace Photo {

cPictureSource::cPictureSource(cPictureRows& pRows, cWatch* pWatch)
    : cRowSource(pRows.GetWidth(), pRows.GetHeight()),
      fState{pRows, cLuminanceSampler::OfPart(pRows.GetWidth(), pRows.GetHeight()),
             std::vector<float>(std::size_t{3} * static_cast<std::size_t>(pRows.GetWidth()))} {
  fState.fStopRequest = pWatch != nullptr ? pWatch->GetStopRequest() : &fState.fIsStopped;
}

void cPictureSource::ReadRun(int pY, int pX, int pCount, float* pToX, float* pToY, float* pToZ) const {
  if (pY != fState.fY) ReadRow(pY);
  TmEngine::SplitPixels(fState.fRow.data() + std::ptrdiff_t{3} * pX, pCount, pToX, pToY, pToZ);
}

void cPictureSource::ReadRow(int pY) const {
  const auto start = std::chrono::steady_clock::now();
  if (!fState.fRows.Read(pY, fState.fRow.data(), nullptr)) fState.fNeedsWholePicture = true;
  // The engine looks at the request a few rows later; what it gets until then is of no use to it.
  if (fState.fNeedsWholePicture) std::fill(fState.fRow.begin(), fState.fRow.end(), 0.0f);
  fState.fY = pY;
  fState.fSampler.TakeRow(pY, fState.fRow.data(), nullptr);
  if (pY == GetHeight() - 1 && !fState.fNeedsWholePicture) Finish();
  if (fState.fNeedsWholePicture) TmEngine::SetFlag(fState.fStopRequest);
  fState.fSeconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void cPictureSource::Finish() const {
  fState.fRepairs = fState.fRows.Finish();
  fState.fNeedsWholePicture = !fState.fRepairs;
}

}  // namespace Photo
