#pragma once

#include <memory>
#include <optional>

#include "engine/cTmRenderer.h"
#include "engine/stages/ColorRows.h"
#include "photo/picture/Picture.h"
#include "photo/picture/PictureSource.h"
#include "photo/picture/ResultPixels.h"
#include "photo/picture/Watch.h"
#include "photo/render/Settings.h"

namespace Photo {

/// What is asked of a rendering, besides its picture.
struct sRendering {
  sSettings fSettings;
  int fDepth = 8;         ///< Bits per sample of the result: 8, 12 or 16.
  bool fDithers = false;  ///< With fDepth 8: rendered at 16 bits and dithered.
  TmEngine::eColorSpaceID fColorSpace = TmEngine::eColorSpaceID_sRGB;  ///< Of the result.
  bool fVerbose = false;                                               ///< The engine writes log lines.
  cWatch* fWatch = nullptr;                                            ///< Null for none.
};

/// What the engine found and did.
struct sRenderingReport {
  double fBlack = 0.0;  ///< Tone-mapped luminances that become black and white.
  double fWhite = 0.0;
  double fBlackShare = 0.0;  ///< Share of pixels, 0 to 1, whose samples in the result are all 0.
  double fWhiteShare = 0.0;  ///< Share of pixels, 0 to 1, with a sample at its largest code in the result.
  bool fWrap = false;        ///< Whether left and right edges were taken to meet.
  TmEngine::sStageSeconds fSeconds;
};

/// Sets up pRenderer for these settings; its images are the caller's to set. pWrap: the edges meet.
void SetUpRenderer(TmEngine::cTmRenderer& pRenderer, const sSettings& pSettings, bool pWrap, bool pVerbose);

/// Sets up pRenderer for other settings than pBefore: what does not depend on one that changes does not run
/// again (see cTmRenderer::ChangeToneParameters).
void ChangeRenderer(TmEngine::cTmRenderer& pRenderer, const sSettings& pBefore, const sSettings& pSettings,
                    bool pWrap);

/// A renderer that has rendered pSample, for what its stages found; another Render needs other images.
std::unique_ptr<TmEngine::cTmRenderer> RenderSample(TmEngine::cBitmapXYZ32& pSample,
                                                    const sSettings& pSettings, bool pWrap);

/// Refuses rows that are too long for the engine, which keeps pChannels per pixel (see ColorRows.h).
void CheckRowLength(int pWidth, int pChannels = TmEngine::kColorChannels);

/// Tone-maps pPicture with a renderer that knows afterwards what its stages found. Throws cFailure.
cResultPixels RenderWith(TmEngine::cTmRenderer& pRenderer, sPicture& pPicture, const sRendering& pRendering,
                         sRenderingReport& pReport);

/// Tone-maps pPicture with a renderer of its own.
cResultPixels RenderPicture(sPicture& pPicture, const sRendering& pRendering, sRenderingReport& pReport);

/// Tone-maps rows as they come from the file, of a picture without alpha whose edges do not meet. None when
/// the rows turn out to depend on each other: the picture has to be loaded. Throws cFailure.
std::optional<cResultPixels> RenderSource(cPictureSource& pSource, const sRendering& pRendering,
                                          sRenderingReport& pReport);

}  // namespace Photo
