#pragma once

#include <string>
#include <utility>
#include <vector>

#include "photo/metadata/MetadataBlocks.h"

namespace Photo {

/// What a picture carries of its file's metadata. What is damaged is left out, with a warning.
class cMetadata {
 public:
  /// pPacket: the file's XMP as it was read.
  cMetadata(sMetadataBlocks pBlocks, std::string pPacket, std::vector<std::string> pWarnings)
      : fBlocks(std::move(pBlocks)), fPacket(std::move(pPacket)), fWarnings(std::move(pWarnings)) {}

  const sMetadataBlocks& GetBlocks() const { return fBlocks; }
  /// Empty for none.
  const std::string& GetXmpPacket() const { return fPacket; }
  /// What was left out.
  const std::vector<std::string>& GetWarnings() const { return fWarnings; }

 private:
  sMetadataBlocks fBlocks;
  std::string fPacket;
  std::vector<std::string> fWarnings;
};

}  // namespace Photo
