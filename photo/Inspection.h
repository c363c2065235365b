#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "photo/metadata/MetadataSummary.h"
#include "photo/picture/Picture.h"
#include "photo/picture/PictureChoice.h"
#include "photo/picture/PictureStatistics.h"
#include "photo/render/Settings.h"

namespace Photo {

/// What is known of a picture before it is rendered.
struct sInspection {
  std::string fFile;
  sPicture fPicture;
  sPictureStatistics fStatistics;
  sMetadataSummary fMetadata;
  sSettings fSuggested;
  bool fWraps = false;  ///< Whether tonemap takes the left and right edges to meet, by metadata or edges.
};

/// Reads the whole picture. libvips must be running. pWatch: null for none. Throws cFailure.
sInspection InspectPicture(const std::string& pFile, const sPictureChoice& pChoice,
                           const tMemoryGate& pGate = {}, cWatch* pWatch = nullptr);

/// For programs: numbers without words; the logarithms are decimal.
nlohmann::ordered_json ToJson(const sInspection& pInspection);

}  // namespace Photo
