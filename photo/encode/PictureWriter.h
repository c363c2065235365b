#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "photo/encode/OutputFormat.h"
#include "photo/io/TempFile.h"
#include "photo/picture/ResultPixels.h"
#include "photo/picture/Watch.h"

namespace Photo {

class cMetadata;

/// A finished picture and all that its file says of it.
struct sFinishedPicture {
  cResultPixels fPixels;
  std::vector<std::uint16_t> fAlpha;           ///< A value per pixel, 65535 opaque; empty for none.
  std::string fProfile;                        ///< ICC, of the samples.
  std::shared_ptr<const cMetadata> fMetadata;  ///< Null for none.
  std::string fSettings;                       ///< The tool's own, as JSON, for its XMP; empty for none.
  bool fIsPremultiplied = false;  ///< The samples are what is seen over black, and may be above alpha.
};

/// Throws cFailure when the result would replace the input.
void CheckIsAnother(const std::string& pInput, const std::string& pOutput);

/// Writes the picture with its profile, and with its alpha and metadata as far as the format has a place for
/// them, to pFile and lets it take its target's place. Returns what had to be left out, in words (see
/// NameParameters). The same picture gives the same bytes. libvips must be running. pWatch: null for none.
/// Throws cFailure.
std::vector<std::string> WritePicture(sFinishedPicture& pPicture, eOutputFormat pFormat,
                                      const sFileOptions& pOptions, cTempFile& pFile,
                                      cWatch* pWatch = nullptr);

}  // namespace Photo
