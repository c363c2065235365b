#pragma once

#include <cstdint>
#include <string>

namespace Photo {

/// The part of a PNG or JPEG file before its pixels, with an end that makes it a complete small file.
/// Metadata are read and written in it without touching the pixels. Files of other formats are all head.
struct sMetadataHead {
  std::string fFile;
  std::string fEnd;          ///< The last bytes of fFile; they are added, not from the file.
  std::int64_t fPixels = 0;  ///< Offset in the file at which the rest begins.
};

/// Throws std::runtime_error when the file cannot be read.
sMetadataHead ReadMetadataHead(const std::string& pPath);

/// Replaces the head by pNew, which has the same end, and moves the rest of the file. Throws
/// std::runtime_error when the file cannot be written, and leaves it damaged then.
void ReplaceMetadataHead(const std::string& pPath, const sMetadataHead& pOld, const std::string& pNew);

}  // namespace Photo
