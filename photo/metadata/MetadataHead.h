#pragma once

#include <cstdint>
#include <string>

namespace Cli {

/// What stands before the pixels of a PNG or JPEG file, closed so that it is a file of its kind that whoever
/// handles metadata takes: it is small, and the pixels need not be read for it. Files of other kinds are all
/// head.
struct sMetadataHead {
  std::string fFile;
  std::string fEnd;          ///< The last bytes of fFile, which are not the file's.
  std::int64_t fPixels = 0;  ///< Where the rest begins in the file.
};

/// Throws std::runtime_error when the file cannot be read.
sMetadataHead ReadMetadataHead(const std::string& pPath);

/// Puts pNew, which has the same end, into the place of the head; the rest moves. Throws std::runtime_error
/// when the file cannot be written, and leaves it damaged then.
void ReplaceMetadataHead(const std::string& pPath, const sMetadataHead& pOld, const std::string& pNew);

}  // namespace Cli
