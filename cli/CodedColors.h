#pragma once

#include <optional>
#include <string>

#include "cli/LinearLight.h"

namespace Cli {

/// The colours of a video-like picture, which states them by numbers (the code points of ITU-T H.273).
struct sCodedColors {
  int fPrimaries = 1;  ///< 1 sRGB, 9 Rec. 2020, 12 Display P3.
  int fTransfer = 13;  ///< 13 sRGB, 8 none, 16 PQ, 18 HLG.
};

/// What a HEIF or AVIF file states; none where it leaves that to a profile, or states numbers that nobody
/// knows here (which leaves a warning).
std::optional<sCodedColors> ReadCodedColors(const std::string& pFile, std::vector<std::string>& pWarnings);

sPrimaries PrimariesOf(const sCodedColors& pColors);
/// In words.
std::string NameColors(const sCodedColors& pColors);

/// The linear light of an encoded sample in [0, 1]. 1 is the white of paper: it is reached at 203 candela a
/// square metre of PQ, and at 75 % of HLG, and lights go beyond.
float DecodeSample(const sCodedColors& pColors, float pSample);

}  // namespace Cli
