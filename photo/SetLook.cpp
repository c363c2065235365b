#include "photo/SetLook.h"

#include <cmath>
#include <memory>
#include <utility>

#include "photo/base/Failure.h"
#include "photo/decode/PictureReader.h"
#include "photo/picture/Alpha.h"
#include "photo/picture/ConvertFailures.h"
#include "photo/picture/Preview.h"
#include "photo/render/AutoSettings.h"
#include "photo/render/ChooseWrap.h"
#include "photo/render/PictureRendering.h"

namespace Photo {
namespace {

sLookPart Measure(TmEngine::cBitmapXYZ32& pSample, const sSettings& pSettings, bool pWrap, eLookStep pStep) {
  const auto renderer = RenderSample(pSample, pSettings, pWrap);
  sLookPart part;
  if (!renderer->IsToneMapped()) return part;
  const TmEngine::sLayerStatistics& layers = renderer->GetLayerStatistics();
  part.fBase = layers.fBaseMean;
  part.fDetail = layers.fDetailMagnitude;
  part.fPixels = static_cast<std::int64_t>(pSample.GetWidth()) * pSample.GetHeight();
  if (pStep == eLookStep::kLayers) return part;
  cLuminanceSampler sampler = cLuminanceSampler::OfAll(1);
  renderer->ReadLuminance([&](const float* pLuminance, int pCount) { sampler.Take(pLuminance, pCount); });
  part.fLuminance = sampler.Get();
  return part;
}

sPicture Load(const sTonemapJob& pJob) {
  sOpenedPicture opened = OpenPicture(pJob.fInput, ChooseSource(pJob), pJob.fMemoryGate);
  CheckRowLength(opened.fRows->GetWidth());
  sPicture picture = LoadPicture(std::move(opened), pJob.fWatch);
  SettleAlpha(picture);
  return picture;
}

sLookPart Look(const sTonemapJob& pJob, eLookStep pStep) {
  sPicture picture = Load(pJob);
  if (pStep == eLookStep::kLight) {
    sPictureStatistics light = SamplePicture(picture);
    const std::int64_t pixels = light.CountPositive();
    return {std::move(light), 0.0, 0.0, pixels};
  }
  const bool wrap = ChooseWrap(pJob.fSettings.fWrap, picture);
  HideTransparent(picture);
  const std::unique_ptr<TmEngine::cBitmapXYZ32> sample = TakeSample(picture);
  picture.fBitmap.reset();
  return ConvertFailures(eFailure::kProcessing, "tone-map",
                         [&] { return Measure(*sample, pJob.fSettings, wrap, pStep); });
}

/// pBlack, pWhite: decimal logarithms. None where they do not differ.
std::optional<TmEngine::sBlackWhite> MakePoints(double pBlack, double pWhite) {
  TmEngine::sBlackWhite points = {static_cast<float>(std::pow(10.0, pBlack)),
                                  static_cast<float>(std::pow(10.0, pWhite))};
  if (!AreUsable(points)) return std::nullopt;
  // a stretch of 1 means none to the engine, but the exposure of the single picture
  if (1.0f / (points.fWhite - points.fBlack) == 1.0f) points.fWhite *= 1.00001f;
  return points;
}

sPictureStatistics Pool(const std::vector<sLookPart>& pParts) {
  sPictureStatistics all;
  for (const sLookPart& part : pParts) all.Merge(part.fLuminance);
  return all;
}

}  // namespace

sLookPart LookAtPicture(const sTonemapJob& pJob, eLookStep pStep) {
  return NameFile(pJob.fInput, [&] { return Look(pJob, pStep); });
}

cSetLook::cSetLook(const sTonemapJob& pJob)
    : fChange(pJob.fChange), fSettings(pJob.fSettings), fNeedsLight(pJob.fAuto) {
  Apply(fChange, fSettings);
  fSettings.fLook.emplace();
}

std::optional<eLookStep> cSetLook::GetStep() const {
  if (fNeedsLight) return eLookStep::kLight;
  if (!fSettings.fLook || fSettings.fLook->fPoints) return std::nullopt;
  const bool hasMeans = fSettings.fLook->fMeans || !(fSettings.fToneCompression > 0.0f);
  return hasMeans ? eLookStep::kPoints : eLookStep::kLayers;
}

void cSetLook::Add(const std::vector<sLookPart>& pParts) {
  const std::optional<eLookStep> step = GetStep();
  if (step == eLookStep::kLight) ChooseSliders(pParts);
  if (step == eLookStep::kLayers) FindMeans(pParts);
  if (step == eLookStep::kPoints) FindPoints(pParts);
}

void cSetLook::ChooseSliders(const std::vector<sLookPart>& pParts) {
  fNeedsLight = false;
  fSettings = SuggestSettings(Pool(pParts));
  Apply(fChange, fSettings);
  fSettings.fLook.emplace();
}

void cSetLook::FindMeans(const std::vector<sLookPart>& pParts) {
  double base = 0.0, detail = 0.0, pixels = 0.0;
  for (const sLookPart& part : pParts) {
    const auto weight = static_cast<double>(part.fPixels);
    base += weight * part.fBase;
    detail += weight * part.fDetail;
    pixels += weight;
  }
  if (pixels == 0.0) return fSettings.fLook.reset();
  fSettings.fLook->fMeans =
      TmEngine::sLayerMeans{static_cast<float>(base / pixels), static_cast<float>(detail / pixels)};
}

void cSetLook::FindPoints(const std::vector<sLookPart>& pParts) {
  const sPictureStatistics all = Pool(pParts);
  if (all.CountPositive() == 0) return fSettings.fLook.reset();
  const TmEngine::sToneParameters parameters = MapToParameters(fSettings, false);
  fSettings.fLook->fPoints =
      MakePoints(all.GetQuantile(static_cast<double>(parameters.fBlackClip) / 100.0),
                 all.GetQuantile(1.0 - static_cast<double>(parameters.fWhiteClip) / 100.0));
  if (!fSettings.fLook->fPoints) fSettings.fLook.reset();
}

}  // namespace Photo
