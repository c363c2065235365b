#include "photo/decode/StatedColors.h"

#include "photo/decode/HeifColors.h"
#include "photo/decode/PngColors.h"
#include "photo/decode/VipsSource.h"
#include "photo/icc/NamedProfile.h"
#include "photo/metadata/MetadataLibrary.h"

namespace Photo {
namespace {

/// Cameras state Adobe RGB (1998) by a name in EXIF alone.
bool IsAdobeRGB(const cMetadata& pMetadata) {
  tExifTexts exif = GetMetadataLibrary().ListExif(pMetadata.GetBlocks());
  return exif["Exif.Iop.InteroperabilityIndex"] == "R03" && exif["Exif.Photo.ColorSpace"] != "1";
}

}  // namespace

sStatedColors FindStatedColors(const std::string& pFile, const vips::VImage& pImage,
                               const cMetadata& pMetadata, std::vector<std::string>& pWarnings) {
  const std::string format = GetFormatName(pImage);
  sStatedColors colors;
  colors.fProfile = GetEmbeddedProfile(pImage);
  if (format == "PNG") {
    colors.fCoded = ReadPngColors(pFile, !colors.fProfile.empty(), pWarnings);
    if (colors.fCoded) colors.fProfile.clear();
  } else if (format == "HEIF" || format == "AVIF") {
    if (colors.fProfile.empty()) colors.fCoded = ReadHeifColors(pFile, pWarnings);
  } else if (format == "JPEG" && colors.fProfile.empty() && pImage.bands() == 3 && IsAdobeRGB(pMetadata)) {
    colors.fProfile = GetIccProfile(TmEngine::eColorSpaceID_AdobeRGB98);
    colors.fOrigin = "EXIF";
  }
  return colors;
}

}  // namespace Photo
