#pragma once

#include <string>

namespace Cli {

/// What a person asks of a photograph's metadata; empty for what they do not tell.
struct sMetadataSummary {
  std::string fCamera;
  std::string fLens;
  std::string fExposure;  ///< "1/250 s, f/8, ISO 100, 35 mm".
  std::string fDate;      ///< As EXIF has it.
  bool fHasGps = false;
};

/// Looks at the header of a file that libvips knows; for others, and for damaged ones, all is empty. libvips
/// must be running.
sMetadataSummary SummariseMetadata(const std::string& pFile);

}  // namespace Cli
