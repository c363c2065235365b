#pragma once

#include <string>

#include "engine/image/cBitmapLDR.h"
#include "photo/io/TempFile.h"
#include "photo/picture/PictureDifference.h"

namespace Tool {

/// By what differences are multiplied so that they are seen: 1, 2, 5, 10 and so on to 200, as far as 99 % of
/// the samples stay below white.
int ChooseAmplification(const Photo::sPictureDifference& pDifference);

/// Two pictures of one size and their difference times pFactor, beside one another with captions, as 8-bit
/// PNG; pFile takes its target's place. pProfile: ICC, of the samples; may be empty. libvips must be running.
/// Throws cFailure.
void WriteSideBySide(TmEngine::cBitmapLDR& pA, TmEngine::cBitmapLDR& pB, int pFactor,
                     const std::string& pProfile, Photo::cTempFile& pFile);

}  // namespace Tool
