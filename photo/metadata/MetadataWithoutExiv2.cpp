#include "photo/metadata/MetadataBlocks.h"

#include <algorithm>
#include <string_view>
#include <utility>

// For builds without Exiv2: libvips reads and writes what it can.

namespace Cli {

struct sMetadataBlocks {};

namespace {

/// What libvips calls the field.
std::string GetVipsName(const std::string& pKey) {
  constexpr std::pair<std::string_view, const char*> kGroups[] = {{"Exif.Image.", "exif-ifd0-"},
                                                                  {"Exif.Photo.", "exif-ifd2-"},
                                                                  {"Exif.GPSInfo.", "exif-ifd3-"},
                                                                  {"Exif.Iop.", "exif-ifd4-"}};
  for (const auto& [group, start] : kGroups) {
    if (pKey.starts_with(group)) return start + pKey.substr(group.size());
  }
  return pKey;
}

/// libvips gives a field as "value (reading, type, sizes)"; the reading of a text begins with the text again.
std::string CutReading(const std::string& pField) {
  constexpr std::string_view kBracket = " (";
  for (std::size_t at = 0; (at = pField.find(kBracket, at)) != std::string::npos; ++at) {
    if (pField.compare(at + kBracket.size(), at, pField, 0, at) == 0) return pField.substr(0, at);
  }
  return pField.substr(0, pField.rfind(kBracket));
}

}  // namespace

bool HasExiv2() {
  return false;
}

std::string GetExiv2Version() {
  return "";
}

std::shared_ptr<const sMetadataBlocks> ReadBlocks(const std::string&, const vips::VImage&,
                                                  std::vector<std::string>&) {
  return nullptr;
}

std::shared_ptr<const sMetadataBlocks> MakeBlocks(const std::vector<sExifField>& pExif, vips::VImage& pFields,
                                                  std::vector<std::string>&) {
  const bool isBelowSea = std::any_of(pExif.begin(), pExif.end(), [](const sExifField& pField) {
    return pField.fKey == "Exif.GPSInfo.GPSAltitudeRef" && pField.fText == "1";
  });
  // libvips cuts off the last bracket, which holds the field's type where it comes from a file
  for (const sExifField& field : pExif) {
    if (isBelowSea && field.fKey == "Exif.GPSInfo.GPSAltitude") continue;  // it would leave out the sign
    pFields.set(GetVipsName(field.fKey).c_str(), (field.fText + " (text)").c_str());
  }
  return nullptr;
}

std::string GetExifText(const sMetadataBlocks*, const vips::VImage& pFields, const std::string& pKey) {
  const std::string name = GetVipsName(pKey);
  if (pFields.get_typeof(name.c_str()) == 0) return "";
  return CutReading(pFields.get_string(name.c_str()));
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
