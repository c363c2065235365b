#pragma once

#include <OpenEXR/ImfInputPart.h>
#include <OpenEXR/ImfMultiPartInputFile.h>

#include <memory>
#include <string>

#include "photo/decode/exr/ExrParts.h"

namespace Photo {

/// The lines of the data window of one source in a file.
class cExrLines {
 public:
  cExrLines() = default;
  cExrLines(const cExrLines&) = delete;
  cExrLines& operator=(const cExrLines&) = delete;
  virtual ~cExrLines() = default;

  /// Reads pCount whole lines from line pY of the data window's coordinates on: red, green, blue, and alpha
  /// where pToAlpha is not null. Throws what the library throws.
  virtual void Read(int pY, int pCount, float* pTo, float* pToAlpha) = 0;
};

/// Whether the source has an alpha that belongs to its pixels.
bool HasAlphaChannel(const Imf::Header& pHeader, const sExrSource& pSource);

/// Refuses sources whose colours are not stored as their kind should be. Throws cFailure.
void CheckExrSource(const Imf::Header& pHeader, const sExrSource& pSource);

/// pPart stays the caller's. Luminance and chroma become RGB. Throws what the library throws.
std::unique_ptr<cExrLines> OpenExrLines(const std::string& pFile, Imf::InputPart& pPart,
                                        const sExrSource& pSource);

}  // namespace Photo
