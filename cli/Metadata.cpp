#include "cli/Metadata.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace Cli {
namespace {

using vips::VImage;

constexpr std::string_view kKept[] = {"exif-",        "xmp-data",        "iptc-data",        "photoshop-data",
                                      "png-comment-", "resolution-unit", "image-description"};
constexpr char kExifOrientation[] = "exif-ifd0-Orientation";
constexpr char kExifColorSpace[] = "exif-ifd2-ColorSpace";

constexpr char kThumbnail[] = "jpeg-thumbnail-data";

bool IsKept(std::string_view pName) {
  return pName != kExifOrientation &&
         std::any_of(std::begin(kKept), std::end(kKept),
                     [&](std::string_view pKnown) { return pName.starts_with(pKnown); });
}

void CopyFields(VipsImage* pFrom, VipsImage* pTo) {
  gchar** const names = vips_image_get_fields(pFrom);
  for (gchar** name = names; *name != nullptr; ++name) {
    GValue value = {};
    if (!IsKept(*name) || vips_image_get(pFrom, *name, &value) != 0) continue;
    vips_image_set(pTo, *name, &value);
    g_value_unset(&value);
  }
  g_strfreev(names);
}

/// Writes 1, for upright, over the digit that follows the name, as an attribute's or an element's value.
void TurnXmpUpright(VipsImage* pImage) {
  constexpr std::string_view kName = "tiff:Orientation";
  const void* data = nullptr;
  std::size_t size = 0;
  if (vips_image_get_typeof(pImage, VIPS_META_XMP_NAME) == 0 ||
      vips_image_get_blob(pImage, VIPS_META_XMP_NAME, &data, &size) != 0) {
    return;
  }
  std::string text(static_cast<const char*>(data), size);
  for (std::size_t at = text.find(kName); at != std::string::npos; at = text.find(kName, at + 1)) {
    const std::size_t value = text.find_first_not_of(" =\"'>", at + kName.size());
    if (value != std::string::npos && text[value] >= '1' && text[value] <= '8') text[value] = '1';
  }
  vips_image_set_blob_copy(pImage, VIPS_META_XMP_NAME, text.data(), text.size());
}

/// A small picture of the result in place of the one that shows the input.
void RenewThumbnail(const VImage& pImage) {
  constexpr int kSide = 160;
  const VImage small = pImage.thumbnail_image(kSide, VImage::option()->set("height", kSide));
  VipsBlob* const blob = small.jpegsave_buffer(VImage::option()->set("strip", true));
  std::size_t size = 0;
  const void* const data = vips_blob_get(blob, &size);
  vips_image_set_blob_copy(pImage.get_image(), kThumbnail, data, size);
  vips_area_unref(VIPS_AREA(blob));
}

}  // namespace

cMetadata::cMetadata(const VImage& pFrom)
    : fFields(
          VImage::black(1, 1).copy(VImage::option()->set("xres", pFrom.xres())->set("yres", pFrom.yres()))),
      fHasThumbnail(pFrom.get_typeof(kThumbnail) != 0) {
  CopyFields(pFrom.get_image(), fFields.get_image());
  TurnXmpUpright(fFields.get_image());
}

void cMetadata::PutInto(const VImage& pTo) const {
  if (fFields.is_null()) return;
  CopyFields(fFields.get_image(), pTo.get_image());
  vips_image_set_int(pTo.get_image(), VIPS_META_ORIENTATION, 1);  // over what the EXIF block says
  if (const double unknown = 1.0; fFields.xres() != unknown || fFields.yres() != unknown) {
    pTo.get_image()->Xres = fFields.xres();
    pTo.get_image()->Yres = fFields.yres();
  }
  if (fHasThumbnail) RenewThumbnail(pTo);
}

void cMetadata::ForgetColorSpace() {
  if (!fFields.is_null()) fFields.remove(kExifColorSpace);
}

}  // namespace Cli
