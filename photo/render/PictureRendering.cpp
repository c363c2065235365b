#include "photo/render/PictureRendering.h"

#include <memory>

#include "engine/curve/cHermiteSpline.h"
#include "photo/base/Failure.h"
#include "photo/picture/Alpha.h"
#include "photo/picture/ConvertFailures.h"
#include "photo/picture/OutputBitmap.h"
#include "photo/picture/Panorama.h"
#include "photo/render/ChooseWrap.h"
#include "photo/render/CurvePoints.h"

namespace Photo {
namespace {

void FillReport(const TmEngine::cTmRenderer& pRenderer, const cResultSink& pSink, sRenderingReport& pReport) {
  pReport.fBlack = static_cast<double>(pRenderer.GetBlackWhite().fBlack);
  pReport.fWhite = static_cast<double>(pRenderer.GetBlackWhite().fWhite);
  pReport.fSeconds = pRenderer.GetStageSeconds();
  const double pixels = static_cast<double>(pSink.GetWidth()) * pSink.GetHeight();
  pReport.fBlackShare = static_cast<double>(pSink.GetClipped().fBlack) / pixels;
  pReport.fWhiteShare = static_cast<double>(pSink.GetClipped().fWhite) / pixels;
}

/// pStart: the column of the picture that the rows begin with.
/// pStop: becomes true where the rendering has to stop; then there is no result. Null for never.
std::optional<cResultPixels> Render(TmEngine::cTmRenderer& pRenderer, const TmEngine::cRowSource& pRows,
                                    int pStart, bool* pStop, const sRendering& pRendering,
                                    sRenderingReport& pReport) {
  cResultPixels result(pRows.GetWidth(), pRows.GetHeight(), pRendering.fDepth);
  cResultSink sink(result, pRendering.fColorSpace, pStart, pRendering.fDithers);
  pRenderer.SetInputRows(pRows);
  pRenderer.SetOutputRows(sink);
  std::optional<cWatchedSource> watchedSource;
  std::optional<cWatchedSink> watchedSink;
  if (cWatch* const watch = pRendering.fWatch) {
    pRenderer.SetInputRows(watchedSource.emplace(pRows, *watch));
    pRenderer.SetOutputRows(watchedSink.emplace(sink, *watch));
  }
  bool isStopped = false;
  pRenderer.Render(pStop, &isStopped);
  if (pRendering.fWatch != nullptr) pRendering.fWatch->Check();
  if (isStopped) return std::nullopt;
  FillReport(pRenderer, sink, pReport);
  return result;
}

void SetSaturation(TmEngine::cTmRenderer& pRenderer, float pSaturation) {
  const auto level = [](float pValue) {
    return MakeHueCurve({{0.0f, pValue}}, TmEngine::eSplineInterpolationMode_Linear);
  };
  pRenderer.SetHueCurves(level(0.5f).get(), level(0.5f + pSaturation / 200.0f).get(), level(0.5f).get());
}

TmEngine::eRendering MapRendering(const sSettings& pSettings) {
  return pSettings.fRendering == eRendering::kColor ? TmEngine::eRendering_Colors
                                                    : TmEngine::eRendering_Channels;
}

}  // namespace

void ChangeRenderer(TmEngine::cTmRenderer& pRenderer, const sSettings& pBefore, const sSettings& pSettings,
                    bool pWrap) {
  TmEngine::ChangeParameters(pRenderer, MapToParameters(pSettings, pWrap));
  pRenderer.SetRendering(MapRendering(pSettings));
  if (pSettings.fLook != pBefore.fLook) pRenderer.SetCommonLook(pSettings.fLook);
  if (pSettings.fSaturation != pBefore.fSaturation) SetSaturation(pRenderer, pSettings.fSaturation);
}

void SetUpRenderer(TmEngine::cTmRenderer& pRenderer, const sSettings& pSettings, bool pWrap, bool pVerbose) {
  pRenderer.SetVerbose(pVerbose);
  TmEngine::SetParameters(pRenderer, MapToParameters(pSettings, pWrap));
  pRenderer.SetRendering(MapRendering(pSettings));
  pRenderer.SetCommonLook(pSettings.fLook);
  if (pSettings.fSaturation != 0.0f) SetSaturation(pRenderer, pSettings.fSaturation);
}

std::unique_ptr<TmEngine::cTmRenderer> RenderSample(TmEngine::cBitmapXYZ32& pSample,
                                                    const sSettings& pSettings, bool pWrap) {
  const auto ignored =
      MakeOutputBitmap(pSample.GetWidth(), pSample.GetHeight(), 8, TmEngine::eColorSpaceID_sRGB);
  auto renderer = std::make_unique<TmEngine::cTmRenderer>();
  SetUpRenderer(*renderer, pSettings, pWrap, false);
  renderer->SetInput(&pSample);
  renderer->SetOutput(ignored.get());
  renderer->Render();
  return renderer;
}

void CheckRowLength(int pWidth, int pChannels) {
  const int longest = TmEngine::LongestRow(pChannels);
  if (pWidth <= longest) return;
  throw cFailure(eFailure::kProcessing,
                 "is " + std::to_string(pWidth) + " pixels wide, and at most " + std::to_string(longest) +
                     " are possible (any height is); turn it by 90 degrees, split it or reduce its width");
}

cResultPixels RenderWith(TmEngine::cTmRenderer& pRenderer, sPicture& pPicture, const sRendering& pRendering,
                         sRenderingReport& pReport) {
  return ConvertFailures(eFailure::kProcessing, "tone-map", [&] {
    const sSettings& settings = pRendering.fSettings;
    pReport.fWrap = ChooseWrap(settings.fWrap, pPicture);
    CheckRowLength(pPicture.fBitmap->GetWidth());
    HideTransparent(pPicture);
    // a column that follows from the picture would differ within a set
    const int start = pReport.fWrap && !settings.fLook ? FindStartColumn(pPicture) : 0;
    const cRolledSource source(*pPicture.fBitmap, start);
    SetUpRenderer(pRenderer, settings, pReport.fWrap, pRendering.fVerbose);
    if (pPicture.fSample && !settings.fLook) {
      const auto sample = RenderSample(*pPicture.fSample, settings, pReport.fWrap);
      pRenderer.SetBlackWhite(sample->GetBlackWhite());
    }
    bool* const stop = pRendering.fWatch != nullptr ? pRendering.fWatch->GetStopRequest() : nullptr;
    cResultPixels result = Render(pRenderer, source, start, stop, pRendering, pReport).value();
    BlackenTransparent(result, pPicture);
    return result;
  });
}

cResultPixels RenderPicture(sPicture& pPicture, const sRendering& pRendering, sRenderingReport& pReport) {
  const auto renderer = std::make_unique<TmEngine::cTmRenderer>();
  return RenderWith(*renderer, pPicture, pRendering, pReport);
}

std::optional<cResultPixels> RenderSource(cPictureSource& pSource, const sRendering& pRendering,
                                          sRenderingReport& pReport) {
  return ConvertFailures(eFailure::kProcessing, "tone-map", [&] {
    const auto renderer = std::make_unique<TmEngine::cTmRenderer>();
    SetUpRenderer(*renderer, pRendering.fSettings, false, pRendering.fVerbose);
    return Render(*renderer, pSource, 0, pSource.GetStopRequest(), pRendering, pReport);
  });
}

}  // namespace Photo
