#include "photo/render/PictureRendering.h"

#include <memory>

#include "engine/curve/cHermiteSpline.h"
#include "photo/base/Failure.h"
#include "photo/picture/Alpha.h"
#include "photo/picture/OutputBitmap.h"
#include "photo/picture/Panorama.h"
#include "photo/render/CurvePoints.h"

namespace Cli {
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
cResultPixels Render(TmEngine::cTmRenderer& pRenderer, const TmEngine::cRowSource& pRows, int pStart,
                     const sOutputOptions& pOutput, sRenderingReport& pReport) {
  cResultPixels result(pRows.GetWidth(), pRows.GetHeight(), pOutput.fDepth);
  cResultSink sink(result, pOutput.fColorSpace, pStart);
  pRenderer.SetInputRows(pRows);
  pRenderer.SetOutputRows(sink);
  pRenderer.Render();
  FillReport(pRenderer, sink, pReport);
  return result;
}

/// The black and white points of another picture with the same settings.
TmEngine::sBlackWhite FindPoints(TmEngine::cBitmapXYZ32& pPicture, const sSettings& pSettings, bool pWrap) {
  const auto ignored =
      MakeOutputBitmap(pPicture.GetWidth(), pPicture.GetHeight(), 8, TmEngine::eColorSpaceID_sRGB);
  const auto renderer = std::make_unique<TmEngine::cTmRenderer>();
  SetUpRenderer(*renderer, pSettings, pWrap, false);
  renderer->SetInput(&pPicture);
  renderer->SetOutput(ignored.get());
  renderer->Render();
  return renderer->GetBlackWhite();
}

}  // namespace

void SetUpRenderer(TmEngine::cTmRenderer& pRenderer, const sSettings& pSettings, bool pWrap, bool pVerbose) {
  pRenderer.SetVerbose(pVerbose);
  TmEngine::SetParameters(pRenderer, MapToParameters(pSettings, pWrap));
  if (pSettings.fSaturation == 0.0f) return;
  const auto level = [](float pValue) {
    return MakeHueCurve({{0.0f, pValue}}, TmEngine::eSplineInterpolationMode_Linear);
  };
  pRenderer.SetHueCurves(level(0.5f).get(), level(0.5f + pSettings.fSaturation / 200.0f).get(),
                         level(0.5f).get());
}

void CheckRowLength(const std::string& pFile, int pWidth, int pChannels) {
  const int longest = TmEngine::LongestRow(pChannels);
  if (pWidth <= longest) return;
  throw cFailure(eFailure::kProcessing, pFile,
                 "is " + std::to_string(pWidth) + " pixels wide, and at most " + std::to_string(longest) +
                     " are possible (any height is); turn it by 90 degrees, split it or reduce its width");
}

cResultPixels RenderWith(TmEngine::cTmRenderer& pRenderer, const std::string& pFile, sPicture& pPicture,
                         const sSettings& pSettings, const sOutputOptions& pOutput, bool pVerbose,
                         sRenderingReport& pReport) {
  return NameFailures(eFailure::kProcessing, pFile, "tone-map", [&] {
    pReport.fWrap = ChooseWrap(pSettings.fWrap, pPicture);
    CheckRowLength(pFile, pPicture.fBitmap->GetWidth());
    HideTransparent(pPicture);
    const int start = pReport.fWrap ? FindStartColumn(pPicture) : 0;
    const cRolledSource source(*pPicture.fBitmap, start);
    SetUpRenderer(pRenderer, pSettings, pReport.fWrap, pVerbose);
    if (pPicture.fSample) pRenderer.SetBlackWhite(FindPoints(*pPicture.fSample, pSettings, pReport.fWrap));
    cResultPixels result = Render(pRenderer, source, start, pOutput, pReport);
    BlackenTransparent(result, pPicture);
    return result;
  });
}

cResultPixels RenderPicture(const std::string& pFile, sPicture& pPicture, const sSettings& pSettings,
                            const sOutputOptions& pOutput, bool pVerbose, sRenderingReport& pReport) {
  const auto renderer = std::make_unique<TmEngine::cTmRenderer>();
  return RenderWith(*renderer, pFile, pPicture, pSettings, pOutput, pVerbose, pReport);
}

cResultPixels RenderRows(const std::string& pFile, const TmEngine::cRowSource& pRows,
                         const sSettings& pSettings, const sOutputOptions& pOutput, bool pVerbose,
                         sRenderingReport& pReport) {
  return NameFailures(eFailure::kProcessing, pFile, "tone-map", [&] {
    const auto renderer = std::make_unique<TmEngine::cTmRenderer>();
    SetUpRenderer(*renderer, pSettings, false, pVerbose);
    return Render(*renderer, pRows, 0, pOutput, pReport);
  });
}

}  // namespace Cli
