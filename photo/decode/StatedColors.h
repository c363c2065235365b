#pragma once

#include <optional>
#include <string>
#include <vector>
#include <vips/vips8>

#include "photo/light/CicpColors.h"
#include "photo/metadata/Metadata.h"

namespace Photo {

/// What a file states of the colours of its samples. Neither profile nor numbers: nothing.
struct sStatedColors {
  std::string fProfile;               ///< ICC.
  const char* fOrigin = "ICC";        ///< Where the profile is from: "EXIF" names one without bringing it.
  std::optional<sCicpColors> fCoded;  ///< How integers are encoded, where no profile states it.
};

/// pImage was opened from pFile, and has these metadata.
sStatedColors FindStatedColors(const std::string& pFile, const vips::VImage& pImage,
                               const cMetadata& pMetadata, std::vector<std::string>& pWarnings);

}  // namespace Photo
