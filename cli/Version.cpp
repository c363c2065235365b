#include "cli/Version.h"

#include <fmt/format.h>

#include <OpenEXR/openexr_base.h>
#include <lcms2.h>
#include <tiffio.h>
#include <vips/vips.h>

#include <CLI/Version.hpp>
#include <nlohmann/json.hpp>
#include <utility>

#include "cli/batch/VipsSession.h"
#include "photo/encode/OutputFormat.h"
#include "photo/metadata/MetadataLibrary.h"

namespace Tool {
namespace {

void Append(std::string& pTo, const std::string& pText) {
  pTo += (pTo.empty() ? "" : ", ") + pText;
}

/// As the libraries that are loaded state them; those of headers alone as they were built in.
std::string ListLibraries() {
  int major = 0;
  int minor = 0;
  int patch = 0;
  exr_get_library_version(&major, &minor, &patch, nullptr);
  const std::string tiff = TIFFGetVersion();  // "LIBTIFF, Version 4.5.0", and lines of copyright
  const std::string tiffNumber = tiff.substr(0, tiff.find('\n'));
  std::string list = std::string("libvips ") + vips_version_string();
  Append(list, fmt::format("OpenEXR {}.{}.{}", major, minor, patch));
  Append(list, "libtiff " + tiffNumber.substr(tiffNumber.rfind(' ') + 1));
  Append(list, fmt::format("Little CMS {}.{}", cmsGetEncodedCMMversion() / 1000,
                           cmsGetEncodedCMMversion() % 1000 / 10));
  if (const std::string exiv2 = Photo::GetExiv2Version(); !exiv2.empty()) Append(list, "Exiv2 " + exiv2);
  Append(list, "CLI11 " CLI11_VERSION);
  return list + fmt::format(", JSON for Modern C++ {}.{}.{}", NLOHMANN_JSON_VERSION_MAJOR,
                            NLOHMANN_JSON_VERSION_MINOR, NLOHMANN_JSON_VERSION_PATCH);
}

bool HasOperation(const char* pName) {
  return vips_type_find("VipsOperation", pName) != 0;
}

std::string ListReadFormats() {
  std::string list = "OpenEXR, PFM";
  for (const auto& [operation, name] : {std::pair{"radload", "Radiance"},
                                        {"tiffload", "TIFF"},
                                        {"pngload", "PNG"},
                                        {"jpegload", "JPEG"},
                                        {"webpload", "WebP"},
                                        {"heifload", "HEIF and AVIF"},
                                        {"jxlload", "JPEG XL"}}) {
    if (HasOperation(operation)) Append(list, name);
  }
  return list;
}

std::string ListWrittenFormats() {
  std::string list;
  for (const auto& [operation, format] : {std::pair{"pngsave", Photo::eOutputFormat::kPng},
                                          {"", Photo::eOutputFormat::kTiff},
                                          {"jpegsave", Photo::eOutputFormat::kJpeg},
                                          {"webpsave", Photo::eOutputFormat::kWebp},
                                          {"heifsave", Photo::eOutputFormat::kAvif},
                                          {"jxlsave", Photo::eOutputFormat::kJxl}}) {
    if (*operation == '\0' || HasOperation(operation)) Append(list, Photo::GetTraits(format).fName);
  }
  return list;
}

std::string DescribeLicence() {
  if (!Photo::HasExiv2()) return "Apache-2.0; this build does without Exiv2";
  return "Apache-2.0 for the sources; this program is linked with Exiv2, which is under the GPL,\n"
         "           version 2 or later: who passes it on does so under the GPL, version 3";
}

}  // namespace

std::string GetVersion() {
  return QUORVANE_VERSION;
}

std::string DescribeVersion() {
  const cVipsSession library;
  return "quorvane " + GetVersion() + "\nLibraries: " + ListLibraries() +
         "\nReads:     " + ListReadFormats() + "\nWrites:    " + ListWrittenFormats() +
         "\nLicence:   " + DescribeLicence();
}

}  // namespace Tool
