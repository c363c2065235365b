#pragma once

#include <string>

#include "cli/Metadata.h"
#include "cli/TempFile.h"
#include "engine/cBitmapLDR.h"

namespace Cli {

/// What a finished picture is written as.
enum class eOutputFormat { kPng, kTiff, kJpeg };

/// The ending of a file's name, with its point, in small letters.
std::string GetEnding(const std::string& pFile);

/// The format that the ending of the name asks for, checked against the depth (8 or 16). Throws cFailure.
eOutputFormat ChooseOutputFormat(const std::string& pFile, int pDepth);

/// Throws cFailure when the result would replace the input.
void CheckIsAnother(const std::string& pInput, const std::string& pOutput);

/// The profile that describes a named colour space.
std::string GetIccProfile(TmEngine::eColorSpaceID pColorSpace);

/// Writes pBitmap with its ICC profile, and what pMetadata holds as far as the format has a place for it, to
/// pFile and lets it take its target's place. libvips must be running. Throws cFailure.
void WritePicture(TmEngine::cBitmapLDR& pBitmap, const std::string& pProfile, const cMetadata& pMetadata,
                  eOutputFormat pFormat, cTempFile& pFile);

/// Throws the cFailure for what libvips could not write.
[[noreturn]] void RefuseToWrite(const cTempFile& pFile);

}  // namespace Cli
