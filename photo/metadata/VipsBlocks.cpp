#include "photo/metadata/VipsBlocks.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace Photo {
namespace {

constexpr std::string_view kExifStart("Exif\0\0", 6);
constexpr std::string_view kOrientation = "exif-ifd0-Orientation";
constexpr std::string_view kExifField = "exif-ifd";
constexpr std::string_view kComment = "png-comment-";

/// The fields of libvips that are kept besides the blocks.
constexpr std::string_view kFields[] = {kExifField, "photoshop-data", kComment, "resolution-unit",
                                        "image-description"};

/// Blocks that programs hide in the text of a PNG are no comments.
bool IsHiddenBlock(std::string_view pName) {
  return pName.starts_with(kComment) && (pName.find("-Raw profile type") != std::string_view::npos ||
                                         pName.find("-XML:com.adobe.xmp") != std::string_view::npos);
}

bool IsKept(std::string_view pName) {
  if (pName == kOrientation || IsHiddenBlock(pName)) return false;
  return std::any_of(std::begin(kFields), std::end(kFields),
                     [&](std::string_view pField) { return pName.starts_with(pField); });
}

std::string TakeBlob(VipsImage* pImage, const char* pName) {
  const void* data = nullptr;
  std::size_t size = 0;
  if (vips_image_get_typeof(pImage, pName) != VIPS_TYPE_BLOB ||
      vips_image_get_blob(pImage, pName, &data, &size) != 0) {
    return "";
  }
  return {static_cast<const char*>(data), size};
}

void SetBlob(VipsImage* pImage, const char* pName, const std::string& pContent) {
  if (!pContent.empty()) vips_image_set_blob_copy(pImage, pName, pContent.data(), pContent.size());
}

/// libvips reads EXIF when it is given: fields and resolution of the picture follow.
void SetExif(VipsImage* pImage, const std::string& pExif) {
  if (!pExif.empty()) SetBlob(pImage, VIPS_META_EXIF_NAME, std::string(kExifStart).append(pExif));
}

std::vector<std::string> ListFields(VipsImage* pImage) {
  std::vector<std::string> list;
  gchar** const names = vips_image_get_fields(pImage);
  for (gchar** name = names; *name != nullptr; ++name) list.emplace_back(*name);
  g_strfreev(names);
  return list;
}

/// Where fields are given with EXIF, they are all that it is to state.
void RemoveOtherFields(VipsImage* pImage, const std::vector<sVipsField>& pFields) {
  const auto isExif = [](const sVipsField& pField) { return pField.fName.starts_with(kExifField); };
  if (std::none_of(pFields.begin(), pFields.end(), isExif)) return;
  for (const std::string& name : ListFields(pImage)) {
    const auto isIt = [&](const sVipsField& pField) { return pField.fName == name; };
    const bool isGiven = std::any_of(pFields.begin(), pFields.end(), isIt);
    if (name.starts_with(kExifField) && !isGiven) vips_image_remove(pImage, name.c_str());
  }
}

/// Neither a text nor bytes: without content.
sVipsField TakeField(VipsImage* pImage, const char* pName) {
  const char* text = nullptr;
  if (vips_image_get_typeof(pImage, pName) != VIPS_TYPE_REF_STRING) {
    return {pName, TakeBlob(pImage, pName), false};
  }
  return {pName, vips_image_get_string(pImage, pName, &text) == 0 ? text : ""};
}

}  // namespace

sMetadataBlocks TakeBlocks(const vips::VImage& pImage) {
  VipsImage* const image = pImage.get_image();
  sMetadataBlocks blocks;
  blocks.fExif = TakeBlob(image, VIPS_META_EXIF_NAME);
  if (blocks.fExif.starts_with(kExifStart)) blocks.fExif.erase(0, kExifStart.size());
  blocks.fXmp = TakeBlob(image, VIPS_META_XMP_NAME);
  blocks.fIptc = TakeBlob(image, VIPS_META_IPTC_NAME);
  blocks.fHasThumbnail = vips_image_get_typeof(image, "jpeg-thumbnail-data") != 0;
  blocks.fXResolution = pImage.xres();
  blocks.fYResolution = pImage.yres();
  for (const std::string& name : ListFields(image)) {
    if (IsKept(name)) blocks.fFields.push_back(TakeField(image, name.c_str()));
  }
  return blocks;
}

void TakeExifResolution(sMetadataBlocks& pBlocks) {
  const vips::VImage scratch = vips::VImage::black(1, 1).copy();
  VipsImage* const image = scratch.get_image();
  image->Xres = pBlocks.fXResolution;  // an option of copy() would be refused, aloud, where it is odd
  image->Yres = pBlocks.fYResolution;
  SetExif(image, pBlocks.fExif);
  pBlocks.fXResolution = image->Xres;
  pBlocks.fYResolution = image->Yres;
}

void SetBlocks(const vips::VImage& pImage, const sMetadataBlocks& pBlocks) {
  VipsImage* const image = pImage.get_image();
  SetExif(image, pBlocks.fExif);
  RemoveOtherFields(image, pBlocks.fFields);
  SetBlob(image, VIPS_META_XMP_NAME, pBlocks.fXmp);
  SetBlob(image, VIPS_META_IPTC_NAME, pBlocks.fIptc);
  const double unknown = 1.0;
  if (pBlocks.fXResolution != unknown || pBlocks.fYResolution != unknown) {
    image->Xres = pBlocks.fXResolution;
    image->Yres = pBlocks.fYResolution;
  }
  for (const sVipsField& field : pBlocks.fFields) {
    if (field.fIsText) {
      vips_image_set_string(image, field.fName.c_str(), field.fContent.c_str());
    } else {
      SetBlob(image, field.fName.c_str(), field.fContent);
    }
  }
}

}  // namespace Photo
