#pragma once

#include <string>

#include "photo/metadata/Metadata.h"

namespace Photo {

/// What a person asks of a photograph's metadata; empty for what they do not state.
struct sMetadataSummary {
  std::string fCamera;
  std::string fLens;
  std::string fExposure;  ///< "1/250 s, f/8, ISO 100, 35 mm".
  std::string fDistance;  ///< "3.2 m".
  std::string fDate;      ///< As EXIF has it, followed by the offset from UTC where stated: " +02:00".
  std::string fDescription;
  std::string fCopyright;
  std::string fPosition;  ///< "27.71700 N, 85.31700 E, 1305 m".
};

sMetadataSummary SummariseMetadata(const cMetadata& pMetadata);

}  // namespace Photo
