#include "cli/MetadataBlocks.h"

// For builds without Exiv2: libvips reads and writes what it can.

namespace Cli {

struct sMetadataBlocks {};

bool HasExiv2() {
  return false;
}

std::shared_ptr<const sMetadataBlocks> ReadBlocks(const std::string&, const vips::VImage&,
                                                  std::vector<std::string>&) {
  return nullptr;
}

bool HasThumbnail(const sMetadataBlocks*) {
  return false;
}

std::shared_ptr<sMetadataBlocks> CorrectBlocks(const sMetadataBlocks*, const sCorrections&) {
  return std::make_shared<sMetadataBlocks>();
}

void HandToVips(const sMetadataBlocks&, const vips::VImage&, std::vector<std::string>&) {}

void WriteBlocks(const std::string&, const sMetadataBlocks&, std::vector<std::string>&) {}

}  // namespace Cli
