#pragma once

#include <memory>
#include <string>

#include "cli/TempFile.h"
#include "engine/cBitmapLDR.h"

namespace Cli {

/// What a finished picture is written as.
enum class eOutputFormat { kPng, kTiff, kJpeg };

/// The format that the ending of the name asks for, checked against the depth (8 or 16). Throws cFailure.
eOutputFormat ChooseOutputFormat(const std::string& pFile, int pDepth);

/// An image of 8 or 16 bits for the engine to render into, one that frees its pixels without a word.
std::unique_ptr<TmEngine::cBitmapLDR> MakeOutputBitmap(int pWidth, int pHeight, int pDepth,
                                                       TmEngine::eColorSpaceID pColorSpace);

/// Writes pBitmap with the ICC profile of pColorSpace to pFile and lets it take its target's place. libvips
/// must be running. Throws cFailure.
void WritePicture(TmEngine::cBitmapLDR& pBitmap, TmEngine::eColorSpaceID pColorSpace, eOutputFormat pFormat,
                  cTempFile& pFile);

}  // namespace Cli
