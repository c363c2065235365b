#pragma once

#include <string>

namespace Photo {

// JPEG XL files are a bare codestream, or boxes (ISO/IEC 18181-2) that hold one beside metadata.

/// Metadata that describe the picture.
struct sJxlMetadata {
  std::string fExif;  ///< From its byte order mark on; empty for none.
  std::string fXmp;
  bool fHasUnread = false;  ///< There are more, compressed by Brotli ("brob"), that could not be read.
};

/// Nothing for a bare codestream, and for a file of another format. What is damaged ends the search.
sJxlMetadata ReadJxlMetadata(const std::string& pFile);

/// Puts the metadata before the codestream, in place of those that the file has. A bare codestream gets
/// boxes, unless there is nothing to put in. Throws std::runtime_error when the file cannot be written.
void WriteJxlMetadata(const std::string& pPath, const sJxlMetadata& pMetadata);

}  // namespace Photo
