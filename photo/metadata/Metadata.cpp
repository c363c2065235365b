#include "photo/metadata/Metadata.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string_view>

#include "photo/metadata/JxlContainer.h"
#include "photo/metadata/MetadataBlocks.h"
#include "photo/metadata/XmpText.h"

namespace Cli {
namespace {

using vips::VImage;

constexpr char kExifOrientation[] = "exif-ifd0-Orientation";
constexpr char kExifColorSpace[] = "exif-ifd2-ColorSpace";
constexpr char kInteropIndex[] = "exif-ifd4-InteroperabilityIndex";
constexpr char kThumbnail[] = "jpeg-thumbnail-data";
constexpr char kComment[] = "png-comment-";
constexpr std::string_view kExifStart("Exif\0\0", 6);

/// The fields of libvips that are kept, and what they belong to.
struct sField {
  std::string_view fStart;
  bool sMetadataKinds::*fKind;  ///< Null for what only all metadata include.
};
constexpr sField kFields[] = {{"exif-", &sMetadataKinds::fExif},
                              {VIPS_META_XMP_NAME, &sMetadataKinds::fXmp},
                              {VIPS_META_IPTC_NAME, &sMetadataKinds::fIptc},
                              {"photoshop-data", &sMetadataKinds::fIptc},
                              {kComment, nullptr},
                              {"resolution-unit", nullptr},
                              {"image-description", nullptr}};

/// Blocks that programs hide in the text of a PNG are no comments.
bool IsHiddenBlock(std::string_view pName) {
  return pName.starts_with(kComment) && (pName.find("-Raw profile type") != std::string_view::npos ||
                                         pName.find("-XML:com.adobe.xmp") != std::string_view::npos);
}

bool IsKept(std::string_view pName, const sMetadataKinds& pKinds) {
  if (pName == kExifOrientation || IsHiddenBlock(pName)) return false;
  return std::any_of(std::begin(kFields), std::end(kFields), [&](const sField& pField) {
    return pName.starts_with(pField.fStart) &&
           (pField.fKind == nullptr ? pKinds.AreAll() : pKinds.*pField.fKind);
  });
}

template <class tIsKept>
void CopyFields(VipsImage* pFrom, VipsImage* pTo, const tIsKept& pIsKept) {
  gchar** const names = vips_image_get_fields(pFrom);
  for (gchar** name = names; *name != nullptr; ++name) {
    GValue value = {};
    if (!pIsKept(*name) || vips_image_get(pFrom, *name, &value) != 0) continue;
    vips_image_set(pTo, *name, &value);
    g_value_unset(&value);
  }
  g_strfreev(names);
}

std::string GetBlob(VipsImage* pImage, const char* pName) {
  const void* data = nullptr;
  std::size_t size = 0;
  if (vips_image_get_typeof(pImage, pName) == 0 || vips_image_get_blob(pImage, pName, &data, &size) != 0) {
    return "";
  }
  return {static_cast<const char*>(data), size};
}

std::string GetXmp(VipsImage* pImage) {
  return GetBlob(pImage, VIPS_META_XMP_NAME);
}

void SetXmp(VipsImage* pImage, const std::string& pPacket) {
  vips_image_set_blob_copy(pImage, VIPS_META_XMP_NAME, pPacket.data(), pPacket.size());
}

/// libvips cuts off the last bracket of a field.
void SetInteropIndex(VipsImage* pImage, const std::string& pIndex) {
  if (pIndex.empty()) {
    vips_image_remove(pImage, kInteropIndex);
  } else {
    vips_image_set_string(pImage, kInteropIndex, (pIndex + " (text)").c_str());
  }
}

/// The picture with what libvips leaves out of a JPEG XL file. Without Exiv2, libvips would take nothing from
/// such an EXIF block.
VImage WithJxlMetadata(const VImage& pImage, const sJxlMetadata& pMetadata) {
  VImage image = pImage.copy();
  const std::string& exif = pMetadata.fExif;
  if (!exif.empty() && HasExiv2()) {
    vips_image_set_blob_copy(image.get_image(), VIPS_META_EXIF_NAME, exif.data(), exif.size());
  }
  if (!pMetadata.fXmp.empty()) SetXmp(image.get_image(), pMetadata.fXmp);
  return image;
}

/// A small picture of the result in place of the one that shows the input, as a JPEG file.
std::string MakeThumbnail(const VImage& pImage) {
  constexpr int kSide = 160;
  VImage small = pImage.thumbnail_image(kSide, VImage::option()->set("height", kSide));
  if (small.has_alpha()) small = small.extract_band(0, VImage::option()->set("n", small.bands() - 1));
  VipsBlob* const blob = small.jpegsave_buffer(VImage::option()->set("strip", true));
  std::size_t size = 0;
  const void* const data = vips_blob_get(blob, &size);
  std::string thumbnail(static_cast<const char*>(data), size);
  vips_area_unref(VIPS_AREA(blob));
  return thumbnail;
}

}  // namespace

cMetadata::cMetadata(const VImage& pFrom)
    : fFields(VImage::black(1, 1).copy()), fHasThumbnail(pFrom.get_typeof(kThumbnail) != 0) {
  fFields.get_image()->Xres = pFrom.xres();  // an option of copy() would be refused, aloud, where it is odd
  fFields.get_image()->Yres = pFrom.yres();
  CopyFields(pFrom.get_image(), fFields.get_image(),
             [](std::string_view pName) { return IsKept(pName, {}); });
  if (const std::string xmp = GetXmp(fFields.get_image()); !xmp.empty()) {
    SetXmp(fFields.get_image(), TurnXmpUpright(xmp));
  }
}

cMetadata::cMetadata(const std::vector<sExifField>& pExif, double pXResolution, double pYResolution)
    : fFields(VImage::black(1, 1).copy()) {
  if (pXResolution > 0.0 && pYResolution > 0.0) {
    fFields.get_image()->Xres = pXResolution;
    fFields.get_image()->Yres = pYResolution;
    fFields.set(VIPS_META_RESOLUTION_UNIT, "in");
  }
  fBlocks = MakeBlocks(pExif, fFields, fWarnings);
}

std::string cMetadata::GetExif(const std::string& pKey) const {
  return fFields.is_null() ? "" : GetExifText(fBlocks.get(), fFields, pKey);
}

std::shared_ptr<sMetadataBlocks> cMetadata::Correct(const VImage& pPicture,
                                                    const sPictureFacts& pFacts) const {
  const bool hasThumbnail = HasThumbnail(fBlocks.get()) && fKinds.fExif;
  return CorrectBlocks(fBlocks.get(),
                       {pFacts, fKinds, hasThumbnail ? MakeThumbnail(pPicture) : std::string(), fSettings});
}

void cMetadata::PutInto(const VImage& pTo, const sPictureFacts& pFacts, bool pIsCompleted,
                        std::vector<std::string>& pWarnings) const {
  pWarnings.insert(pWarnings.end(), fWarnings.begin(), fWarnings.end());
  VipsImage* const to = pTo.get_image();
  if (!fFields.is_null()) {
    CopyFields(fFields.get_image(), to, [&](std::string_view pName) {
      return IsKept(pName, fKinds) &&
             (!HasExiv2() || pName.starts_with(kComment) || pName.starts_with("resolution-"));
    });
    const double unknown = 1.0;
    if (fKinds.AreAll() && (fFields.xres() != unknown || fFields.yres() != unknown)) {
      to->Xres = fFields.xres();
      to->Yres = fFields.yres();
    }
  }
  if (HasExiv2()) {
    if (!pIsCompleted) HandToVips(*Correct(pTo, pFacts), pTo, pWarnings);
    return;
  }
  if (!fFields.is_null()) vips_image_set_int(to, VIPS_META_ORIENTATION, 1);  // over what the EXIF block says
  if (pFacts.fExifColorSpace > 1) vips_image_remove(to, kExifColorSpace);
  if (vips_image_get_typeof(to, kInteropIndex) != 0) SetInteropIndex(to, pFacts.fInteropIndex);
  if (const std::string xmp = GetXmp(to); !xmp.empty()) {
    SetXmp(to, FitPanorama(DropDevelopment(xmp), pFacts.fWidth, pFacts.fHeight));
  }
  if (!fSettings.empty() && fKinds.fXmp) SetXmp(to, PutSettingsIntoXmp(GetXmp(to), fSettings));
  if (!fHasThumbnail || !fKinds.fExif) return;
  const std::string thumbnail = MakeThumbnail(pTo);
  vips_image_set_blob_copy(to, kThumbnail, thumbnail.data(), thumbnail.size());
}

void cMetadata::Complete(const std::string& pPath, const VImage& pPicture, const sPictureFacts& pFacts,
                         std::vector<std::string>& pWarnings) const {
  if (HasExiv2()) WriteBlocks(pPath, *Correct(pPicture, pFacts), pWarnings);
}

void CompleteJxl(const std::string& pPath, const VImage& pPicture) {
  std::string exif = HasExiv2() ? GetBlob(pPicture.get_image(), VIPS_META_EXIF_NAME) : "";
  if (exif.starts_with(kExifStart)) exif.erase(0, kExifStart.size());
  WriteJxlMetadata(pPath, {exif, GetXmp(pPicture.get_image())});
}

std::string cMetadata::GetXmpPacket() const {
  return fFields.is_null() ? "" : GetXmp(fFields.get_image());
}

std::shared_ptr<const cMetadata> ReadMetadata(const std::string& pFile, const VImage& pImage) {
  const sJxlMetadata boxes = ReadJxlMetadata(pFile);
  const VImage image = WithJxlMetadata(pImage, boxes);
  auto metadata = std::make_shared<cMetadata>(image);
  metadata->fBlocks = ReadBlocks(pFile, image, metadata->fWarnings);
  if (boxes.fHasCompressed) metadata->fWarnings.emplace_back("its compressed metadata (brob) are left out");
  return metadata;
}

std::string ReadStoredSettings(const std::string& pFile) {
  try {
    const vips::VSource source = vips::VSource::new_from_file(pFile.c_str());
    const VImage image = VImage::new_from_source(source, "");
    const VImage complete = WithJxlMetadata(image, ReadJxlMetadata(pFile));
    std::string settings = FindSettingsInXmp(GetXmp(complete.get_image()));
    if (!settings.empty() || image.get_string("vips-loader") != std::string("heifload_source"))
      return settings;
    std::ifstream stream(pFile, std::ios::binary);  // libvips reads no XMP of AVIF, where it stands as it is
    return FindSettingsInXmp({std::istreambuf_iterator<char>(stream), {}});
  } catch (const vips::VError&) {
    vips_error_clear();
    return "";
  }
}

}  // namespace Cli
