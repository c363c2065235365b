#pragma once

#include "engine/cTmRenderer.h"
#include "engine/stages/ColorRows.h"
#include "photo/encode/OutputOptions.h"
#include "photo/picture/Picture.h"
#include "photo/picture/ResultPixels.h"
#include "photo/render/Settings.h"

namespace Cli {

/// What the engine found and did.
struct sRenderingReport {
  double fBlack = 0.0;  ///< Tone-mapped luminances that become black and white.
  double fWhite = 0.0;
  double fBlackShare = 0.0;  ///< Of the pixels, 0 to 1: all samples of the result are 0.
  double fWhiteShare = 0.0;  ///< Of the pixels, 0 to 1: a sample of the result is the largest there is.
  bool fWrap = false;        ///< Whether left and right edges were taken to meet.
  TmEngine::sStageSeconds fSeconds;
};

/// Sets up pRenderer for these settings; its images are the caller's to set. pWrap: the edges meet.
void SetUpRenderer(TmEngine::cTmRenderer& pRenderer, const sSettings& pSettings, bool pWrap, bool pVerbose);

/// Refuses rows that are too long for the engine, which keeps pChannels of a pixel (see ColorRows.h).
void CheckRowLength(const std::string& pFile, int pWidth, int pChannels = TmEngine::kColorChannels);

/// Tone-maps pPicture with a renderer that knows afterwards what its stages found. Throws cFailure in the
/// name of pFile.
cResultPixels RenderWith(TmEngine::cTmRenderer& pRenderer, const std::string& pFile, sPicture& pPicture,
                         const sSettings& pSettings, const sOutputOptions& pOutput, bool pVerbose,
                         sRenderingReport& pReport);

/// The same with a renderer of its own.
cResultPixels RenderPicture(const std::string& pFile, sPicture& pPicture, const sSettings& pSettings,
                            const sOutputOptions& pOutput, bool pVerbose, sRenderingReport& pReport);

/// Tone-maps rows as they come, of a picture without alpha whose edges do not meet. What reading throws
/// passes; all else is a cFailure in the name of pFile.
cResultPixels RenderRows(const std::string& pFile, const TmEngine::cRowSource& pRows,
                         const sSettings& pSettings, const sOutputOptions& pOutput, bool pVerbose,
                         sRenderingReport& pReport);

}  // namespace Cli
