#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "photo/io/MetadataKinds.h"

namespace Photo {

/// What a finished picture is written as.
enum class eOutputFormat { kPng, kTiff, kJpeg, kWebp, kAvif, kJxl };

/// How a file is written, besides its pixels' depth and colours.
struct sFileOptions {
  int fQuality = 0;       ///< 1 to 100, of formats that lose something; 0: the format's own.
  int fCompression = -1;  ///< 0 to 9, of formats that lose nothing; -1: the format's own.
  sMetadataKinds fMetadata;
};

/// What a format holds, and what it is called.
struct sFormatTraits {
  eOutputFormat fFormat;
  const char* fName;
  std::vector<std::string> fExtensions;  ///< With their points, in small letters.
  std::vector<int> fDepths;              ///< Bits per sample, rising.
  int fQuality;                          ///< The default; 0 for a format that loses nothing.
  int fCompression;                      ///< The default; -1 for a format that takes none.
  bool fHasAlpha;
  int fLargestSide;  ///< In pixels.
};
const sFormatTraits& GetTraits(eOutputFormat pFormat);

/// The extension of a file's name, with its point, in small letters.
std::string GetExtension(const std::string& pFile);

/// The format that the extension of the name asks for, checked against the depth and the options. Throws
/// cFailure.
eOutputFormat ChooseOutputFormat(const std::string& pFile, int pDepth, const sFileOptions& pOptions = {});

/// The largest depth of the format that is not above pDepth.
int ChooseDepth(eOutputFormat pFormat, int pDepth);

/// Throws cFailure for a picture that the format is too small for.
void CheckFits(eOutputFormat pFormat, std::int64_t pWidth, std::int64_t pHeight);

}  // namespace Photo
