#include "cli/PictureRendering.h"

#include <algorithm>
#include <exception>
#include <new>

#include "cli/Alpha.h"
#include "cli/CurvePoints.h"
#include "cli/Failure.h"
#include "cli/OutputBitmap.h"
#include "cli/Panorama.h"
#include "engine/BitmapRows.h"
#include "engine/cHermiteSpline.h"

namespace Cli {
namespace {

/// Counts the pixels that lost all to black, or a sample to white.
template <class tSample>
void CountClipped(TmEngine::cBitmapLDR& pBitmap, tSample pFull, sRenderingReport& pReport) {
  std::int64_t blacks = 0;
  std::int64_t whites = 0;
  const auto rows = TmEngine::RowsOf(reinterpret_cast<const tSample*>(pBitmap.GetBitmapData()), pBitmap);
  TmEngine::ForEachPixel(rows, [&](const tSample* pPixel) {
    blacks += (pPixel[0] | pPixel[1] | pPixel[2]) == 0 ? 1 : 0;
    whites += std::max({pPixel[0], pPixel[1], pPixel[2]}) == pFull ? 1 : 0;
  });
  const double pixels = static_cast<double>(pBitmap.GetWidth()) * pBitmap.GetHeight();
  pReport.fBlackShare = static_cast<double>(blacks) / pixels;
  pReport.fWhiteShare = static_cast<double>(whites) / pixels;
}

void FillReport(const TmEngine::cTmRenderer& pRenderer, TmEngine::cBitmapLDR& pResult,
                sRenderingReport& pReport) {
  pReport.fBlack = static_cast<double>(pRenderer.GetBlackWhite().fBlack);
  pReport.fWhite = static_cast<double>(pRenderer.GetBlackWhite().fWhite);
  pReport.fSeconds = pRenderer.GetStageSeconds();
  if (pResult.GetBitDepth() == 8) {
    CountClipped<unsigned char>(pResult, 255, pReport);
  } else {
    CountClipped<unsigned short>(pResult, 65535, pReport);
  }
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

std::unique_ptr<TmEngine::cBitmapLDR> RenderWith(TmEngine::cTmRenderer& pRenderer, const std::string& pFile,
                                                 sPicture& pPicture, const sSettings& pSettings,
                                                 const sOutputOptions& pOutput, bool pVerbose,
                                                 sRenderingReport& pReport) {
  try {
    auto result = MakeOutputBitmap(pPicture.fBitmap->GetWidth(), pPicture.fBitmap->GetHeight(),
                                   pOutput.fDepth, pOutput.fColorSpace);
    pReport.fWrap = ChooseWrap(pSettings.fWrap, pPicture);
    HideTransparent(pPicture);
    const int start = pReport.fWrap ? FindStartColumn(pPicture) : 0;
    const cRolledSource source(*pPicture.fBitmap, start);
    cRolledSink sink(*result, start);
    SetUpRenderer(pRenderer, pSettings, pReport.fWrap, pVerbose);
    if (pPicture.fSample) pRenderer.SetBlackWhite(FindPoints(*pPicture.fSample, pSettings, pReport.fWrap));
    pRenderer.SetInputRows(source);
    pRenderer.SetOutputRows(sink);
    pRenderer.Render();
    FillReport(pRenderer, *result, pReport);
    BlackenTransparent(*result, pPicture.fAlpha);
    return result;
  } catch (const std::bad_alloc&) {
    throw cFailure(eExitCode_Processing, pFile, "not enough memory to tone-map it");
  } catch (const std::exception& exception) {
    throw cFailure(eExitCode_Processing, pFile, exception.what());
  }
}

std::unique_ptr<TmEngine::cBitmapLDR> RenderPicture(const std::string& pFile, sPicture& pPicture,
                                                    const sSettings& pSettings, const sOutputOptions& pOutput,
                                                    bool pVerbose, sRenderingReport& pReport) {
  const auto renderer = std::make_unique<TmEngine::cTmRenderer>();
  return RenderWith(*renderer, pFile, pPicture, pSettings, pOutput, pVerbose, pReport);
}

}  // namespace Cli
