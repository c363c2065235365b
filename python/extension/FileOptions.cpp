#include "python/extension/FileOptions.h"

#include <map>
#include <optional>
#include <vector>

#include "python/extension/LightSpaces.h"

namespace Python {
namespace {

namespace py = pybind11;

Photo::sMetadataKinds ToKinds(const cOptions& pOptions) {
  Photo::sMetadataKinds kinds{false, false, false};
  const std::map<std::string, bool Photo::sMetadataKinds::*> names = {
      {"exif", &Photo::sMetadataKinds::fExif},
      {"xmp", &Photo::sMetadataKinds::fXmp},
      {"iptc", &Photo::sMetadataKinds::fIptc}};
  for (const std::string& name : pOptions.Get<std::vector<std::string>>("keep", {"exif", "xmp", "iptc"})) {
    const auto found = names.find(name);
    if (found == names.end()) throw py::value_error("'" + name + "' is none of exif, xmp and iptc");
    kinds.*found->second = true;
  }
  return kinds;
}

Photo::sAlphaChoice ToAlpha(const cOptions& pOptions) {
  const auto name = pOptions.Get<std::string>("alpha", "keep");
  if (const auto choice = Photo::ParseAlpha(name)) return *choice;
  throw py::value_error("alpha is '" + name + "'; it must be keep, ignore or a colour such as #808080");
}

}  // namespace

int cOptions::GetWithin(const char* pName, int pLowest, int pHighest, int pDefault) const {
  const auto value = Get<std::optional<int>>(pName, std::nullopt);
  if (!value) return pDefault;
  if (*value >= pLowest && *value <= pHighest) return *value;
  throw py::value_error(std::string(pName) + " is " + std::to_string(*value) + "; it must be from " +
                        std::to_string(pLowest) + " to " + std::to_string(pHighest));
}

Photo::sPictureChoice ToChoice(const cOptions& pOptions) {
  Photo::sPictureChoice choice;
  choice.fPart = pOptions.Get<std::string>("part", "");
  choice.fLayer = pOptions.Get<std::string>("layer", "");
  choice.fPage = pOptions.GetWithin("page", 1, 1000000, 0);
  return choice;
}

Photo::sFileOptions ToFileOptions(const cOptions& pOptions) {
  return {pOptions.GetWithin("quality", 1, 100, 0), pOptions.GetWithin("compression", 0, 9, -1),
          ToKinds(pOptions)};
}

Photo::sOutputOptions ToOutputOptions(const cOptions& pOptions) {
  Photo::sOutputOptions result;
  result.fDepth = pOptions.Get("depth", 8);
  if (result.fDepth != 8 && result.fDepth != 12 && result.fDepth != 16) {
    throw py::value_error("depth is " + std::to_string(result.fDepth) + "; it must be 8, 12 or 16");
  }
  result.fDithers = pOptions.Get("dither", false);
  result.fColorSpace = GetColorSpace(pOptions.Get<std::string>("color_space", "srgb"));
  result.fPreview = pOptions.GetWithin("preview", 0, 65535, 0);
  result.fAlpha = ToAlpha(pOptions);
  result.fFile = ToFileOptions(pOptions);
  return result;
}

}  // namespace Python
