#include "python/extension/ArrayRenderer.h"

#include <algorithm>
#include <utility>

#include "photo/base/Failure.h"
#include "photo/picture/ConvertFailures.h"
#include "photo/picture/Panorama.h"
#include "photo/picture/Picture.h"
#include "photo/render/ChooseWrap.h"
#include "photo/render/PictureRendering.h"
#include "python/extension/LightSpaces.h"

namespace Python {
namespace {

using Photo::cWatch;
using Photo::sPicture;

/// The picture in memory.
sPicture LoadFloats(const sPixelArray& pPixels, const std::string& pSource, cWatch& pWatch) {
  Photo::sOpenedPicture opened;
  opened.fRows = std::make_unique<cFloatRows>(pPixels, GetLight(pSource));
  return Photo::LoadPicture(std::move(opened), &pWatch);
}

sPicture LoadIntegers(const sPixelArray& pPixels, TmEngine::eColorSpaceID pSpace, cWatch& pWatch) {
  sPicture picture;
  picture.fBitmap = Photo::MakeBitmap(pPixels.fWidth, pPixels.fHeight);
  const cIntegerSource source(pPixels, pSpace);
  float xyz[3][TmEngine::kRunLength];
  for (int y = 0; y < pPixels.fHeight; ++y) {
    pWatch.Check();
    float* to = Photo::GetRow(picture, y);
    for (int x = 0; x < pPixels.fWidth; x += TmEngine::kRunLength) {
      const int count = std::min(TmEngine::kRunLength, pPixels.fWidth - x);
      source.ReadRun(y, x, count, xyz[0], xyz[1], xyz[2]);
      for (int i = 0; i < 3 * count; ++i) *to++ = xyz[i % 3][i / 3];
    }
  }
  return picture;
}

}  // namespace

cArrayRenderer::cArrayRenderer(const sPixelArray& pPixels, const std::string& pSource,
                               TmEngine::eColorSpaceID pSpace)
    : fPixels(pPixels), fSourceName(pSource), fSpace(pSpace) {
  Photo::NameFile("image", [&] { Photo::CheckRowLength(pPixels.fWidth); });
}

void cArrayRenderer::Render(const Photo::sSettings& pSettings, bool pDithers, const sPixelArray& pTo,
                            cWatch& pWatch) {
  Photo::ConvertFailures(Photo::eFailure::kProcessing, "tone-map", [&] {
    const bool wrap = DecideWrap(pSettings.fWrap, pWatch);
    const bool isNew = fRenderer == nullptr;
    if (Run(pSettings, wrap, pDithers, pTo, pWatch) && !isNew && IsFlat()) {
      fRenderer.reset();  // its preparation does not hold any more
      Run(pSettings, wrap, pDithers, pTo, pWatch);
    }
    pWatch.Check();
  });
}

TmEngine::sStageSeconds cArrayRenderer::GetSeconds() const {
  return fRenderer == nullptr ? TmEngine::sStageSeconds() : fRenderer->GetStageSeconds();
}

Photo::sRepairs cArrayRenderer::GetRepairs() const {
  return fRepairs;
}

bool cArrayRenderer::DecideWrap(Photo::eWrap pWrap, cWatch& pWatch) {
  if (!Photo::MayWrap(pWrap, false, fPixels.fWidth, fPixels.fHeight)) return false;
  const bool isFound = pWrap == Photo::eWrap::kAuto || fPixels.IsOfFloats();
  if (isFound && fLoaded == nullptr) Load(pWatch);
  return pWrap == Photo::eWrap::kHorizontal || Photo::ChooseWrap(pWrap, *fLoaded);
}

void cArrayRenderer::Load(cWatch& pWatch) {
  fLoaded = std::make_unique<sPicture>(fPixels.IsOfFloats() ? LoadFloats(fPixels, fSourceName, pWatch)
                                                            : LoadIntegers(fPixels, fSpace, pWatch));
  fRepairs = fLoaded->fRepairs;
}

const TmEngine::cRowSource& cArrayRenderer::MakeSource(int pStart, cWatch& pWatch) {
  fStream.reset();
  if (!fPixels.IsOfFloats()) return *(fSource = std::make_unique<cIntegerSource>(fPixels, fSpace));
  if (fLoaded != nullptr) {
    return *(fSource = std::make_unique<Photo::cRolledSource>(*fLoaded->fBitmap, pStart));
  }
  fRows = std::make_unique<cFloatRows>(fPixels, GetLight(fSourceName));
  return *(fStream = std::make_unique<Photo::cPictureSource>(*fRows, &pWatch));
}

/// The sink lives as long as the rendering: the renderer gets a new one each time.
bool cArrayRenderer::Run(const Photo::sSettings& pSettings, bool pWrap, bool pDithers, const sPixelArray& pTo,
                         cWatch& pWatch) {
  const int start = pWrap && fPixels.IsOfFloats() ? Photo::FindStartColumn(*fLoaded) : 0;
  if (fRenderer == nullptr || start != fStart) {
    fRenderer = std::make_unique<TmEngine::cTmRenderer>();
    fRenderer->SetInputRows(fWatched.emplace(MakeSource(start, pWatch), pWatch));
    fStart = start;
    Photo::SetUpRenderer(*fRenderer, pSettings, pWrap, false);
  } else {
    Photo::ChangeRenderer(*fRenderer, fSettings, pSettings, pWrap);
  }
  fSettings = pSettings;
  cArraySink sink(fPixels, pTo, fSpace, start, pDithers);
  Photo::cWatchedSink watchedSink(sink, pWatch);
  fRenderer->SetOutputRows(watchedSink);
  bool isStopped = false;
  fRenderer->Render(pWatch.GetStopRequest(), &isStopped);
  if (fStream != nullptr && fStream->GetRepairs()) fRepairs = *fStream->GetRepairs();
  if (!isStopped) return true;
  const bool isLoadedNext = fStream != nullptr && fStream->NeedsWholePicture();
  if (!fRenderer->IsPrepared()) fRenderer.reset();  // rows are read once
  if (!isLoadedNext || pWatch.IsCancelled()) return false;
  Load(pWatch);
  pWatch.Resume();
  return Run(pSettings, pWrap, pDithers, pTo, pWatch);
}

bool cArrayRenderer::IsFlat() const {
  const TmEngine::sLayerStatistics& layers = fRenderer->GetLayerStatistics();
  return !(layers.fBaseMax > layers.fBaseMin) || !(layers.fDetailMax > layers.fDetailMin);
}

Photo::sPictureStatistics SampleArray(const sPixelArray& pPixels, const std::string& pSource,
                                      TmEngine::eColorSpaceID pSpace, cWatch& pWatch) {
  return Photo::ConvertFailures(Photo::eFailure::kProcessing, "measure", [&] {
    return Photo::SamplePicture(pPixels.IsOfFloats() ? LoadFloats(pPixels, pSource, pWatch)
                                                     : LoadIntegers(pPixels, pSpace, pWatch));
  });
}

}  // namespace Python
