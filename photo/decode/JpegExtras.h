#pragma once

#include <string>

namespace Photo {

/// What a JPEG file holds besides the picture that its decoders show.
struct sJpegExtras {
  bool fHasGainMap = false;  ///< For screens that are brighter than white.
  int fPictures = 0;         ///< Further pictures that are no smaller copies of the first.
};

/// Nothing for files of other formats. Reads no more than what is before the pixels.
sJpegExtras ReadJpegExtras(const std::string& pFile);

}  // namespace Photo
