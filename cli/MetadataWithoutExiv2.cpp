#include "cli/MetadataBlocks.h"

#include <string_view>
#include <utility>

// For builds without Exiv2: libvips reads and writes what it can.

namespace Cli {

struct sMetadataBlocks {};

namespace {

/// What libvips calls the field.
std::string GetVipsName(const std::string& pKey) {
  constexpr std::pair<std::string_view, const char*> kGroups[] = {
      {"Exif.Image.", "exif-ifd0-"}, {"Exif.Photo.", "exif-ifd2-"}, {"Exif.GPSInfo.", "exif-ifd3-"}};
  for (const auto& [group, start] : kGroups) {
    if (pKey.starts_with(group)) return start + pKey.substr(group.size());
  }
  return pKey;
}

}  // namespace

bool HasExiv2() {
  return false;
}

std::shared_ptr<const sMetadataBlocks> ReadBlocks(const std::string&, const vips::VImage&,
                                                  std::vector<std::string>&) {
  return nullptr;
}

std::shared_ptr<const sMetadataBlocks> MakeBlocks(const std::vector<sExifField>& pExif, vips::VImage& pFields,
                                                  std::vector<std::string>&) {
  // libvips cuts off the last bracket, which holds the field's type where it comes from a file
  for (const sExifField& field : pExif) {
    pFields.set(GetVipsName(field.fKey).c_str(), (field.fText + " (text)").c_str());
  }
  return nullptr;
}

std::string GetExifText(const sMetadataBlocks*, const vips::VImage& pFields, const std::string& pKey) {
  const std::string name = GetVipsName(pKey);
  if (pFields.get_typeof(name.c_str()) == 0) return "";
  const std::string text = pFields.get_string(name.c_str());
  return text.substr(0, text.rfind(" ("));
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
