#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/image/cBitmapLDR.h"
#include "photo/picture/MemoryGate.h"
#include "photo/picture/PictureChoice.h"

namespace Photo {

class cMetadata;

/// A finished picture of 8- or 16-bit samples, and what belongs to it.
struct sLdrPicture {
  std::unique_ptr<TmEngine::cBitmapLDR> fBitmap;  ///< Upright, with the colour space of its samples.
  std::vector<std::uint16_t> fAlpha;              ///< As in sPicture.
  int fFileDepth = 8;        ///< Bits per sample of the file; a converted picture holds 16.
  std::string fProfile;      ///< ICC, of fBitmap's samples.
  std::string fBeyondWhite;  ///< The name of colours that go beyond white, which no profile is for.
  std::shared_ptr<const cMetadata> fMetadata;
  std::vector<std::string> fWarnings;
};

/// Reads a picture of integers of any format that libvips reads. RGB samples stay as they are, in the colour
/// space of their profile (sRGB without one), where the engine can work in it; else, as grey with a profile
/// and CMYK, they are converted to the smallest of the engine's named spaces that holds their colours. Alpha
/// stays as it is. libvips must be running. Throws cFailure; for pictures of floats it says that pVerb does
/// not take them.
sLdrPicture ReadLdrPicture(const std::string& pFile, const std::string& pVerb,
                           const sPictureChoice& pChoice = {}, const tMemoryGate& pGate = {});

}  // namespace Photo
