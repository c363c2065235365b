#include "photo/metadata/PictureMetadata.h"

#include <string_view>
#include <utility>

#include "photo/io/FileBytes.h"
#include "photo/metadata/JxlContainer.h"
#include "photo/metadata/VipsBlocks.h"
#include "photo/metadata/XmpText.h"

namespace Photo {
namespace {

using vips::VImage;

/// What libvips leaves out of a JPEG XL file.
void AddBoxes(const sJxlMetadata& pBoxes, sMetadataBlocks& pTo) {
  if (!pBoxes.fExif.empty()) pTo.fExif = pBoxes.fExif;
  if (!pBoxes.fXmp.empty()) pTo.fXmp = pBoxes.fXmp;
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

/// From where it is stored as it is, without compression.
std::string CutPacket(const std::string& pFile) {
  constexpr std::string_view kEnd = "</x:xmpmeta>";
  const std::size_t start = pFile.find("<x:xmpmeta");
  const std::size_t end = start == std::string::npos ? start : pFile.find(kEnd, start);
  return end == std::string::npos ? "" : pFile.substr(start, end + kEnd.size() - start);
}

}  // namespace

std::shared_ptr<const cMetadata> ReadMetadata(const std::string& pFile, const VImage& pImage) {
  const sJxlMetadata boxes = ReadJxlMetadata(pFile);
  sMetadataBlocks found = TakeBlocks(pImage);
  AddBoxes(boxes, found);
  TakeExifResolution(found);
  std::vector<std::string> warnings;
  const bool isJxl = pImage.get_string(VIPS_META_LOADER) == std::string("jxlload_source");
  sMetadataBlocks blocks = GetMetadataLibrary().Read(isJxl ? "" : pFile, found, warnings);
  if (boxes.fHasUnread) warnings.emplace_back("its compressed metadata (brob) are left out");
  return std::make_shared<cMetadata>(std::move(blocks), std::move(found.fXmp), std::move(warnings));
}

cResultMetadata::cResultMetadata(const cMetadata* pMetadata, const VImage& pPicture,
                                 const sPictureFacts& pFacts, const sMetadataKinds& pKinds,
                                 const std::string& pSettings, bool pIsCompleted,
                                 std::vector<std::string>& pWarnings)
    : fIsUpright(pMetadata != nullptr), fIsCompleted(pIsCompleted && GetMetadataLibrary().WritesFiles()) {
  if (pMetadata != nullptr) {
    pWarnings.insert(pWarnings.end(), pMetadata->GetWarnings().begin(), pMetadata->GetWarnings().end());
  }
  if (pMetadata != nullptr) fBlocks = pMetadata->GetBlocks();
  const bool hasThumbnail = fBlocks.fHasThumbnail && pKinds.fExif;
  fCorrections = {pFacts, pKinds, hasThumbnail ? MakeThumbnail(pPicture) : "", pSettings};
  if (!pKinds.AreAll()) {
    fBlocks.fXResolution = fBlocks.fYResolution = sMetadataBlocks().fXResolution;
    if (fIsCompleted) fBlocks.fFields.clear();
  }
  if (!fIsCompleted) fBlocks = GetMetadataLibrary().Correct(fBlocks, fCorrections, pWarnings);
}

void cResultMetadata::PutInto(const VImage& pTo) const {
  sMetadataBlocks blocks = fBlocks;
  if (fIsCompleted) blocks.fExif = blocks.fXmp = blocks.fIptc = "";
  SetBlocks(pTo, blocks);
  const bool isOverruled = fIsUpright && !GetMetadataLibrary().WritesFiles();
  if (isOverruled) vips_image_set_int(pTo.get_image(), VIPS_META_ORIENTATION, 1);
}

void cResultMetadata::Complete(const std::string& pPath, std::vector<std::string>& pWarnings) const {
  if (fIsCompleted) GetMetadataLibrary().Write(pPath, fBlocks, fCorrections, pWarnings);
}

void cResultMetadata::CompleteJxl(const std::string& pPath) const {
  const std::string& exif = fBlocks.fExif;
  WriteJxlMetadata(pPath, {GetMetadataLibrary().WritesFiles() ? exif : "", fBlocks.fXmp});
}

std::string ReadStoredSettings(const std::string& pFile) {
  try {
    const vips::VSource source = vips::VSource::new_from_file(pFile.c_str());
    const VImage image = VImage::new_from_source(source, "");
    sMetadataBlocks found = TakeBlocks(image);
    AddBoxes(ReadJxlMetadata(pFile), found);
    std::string settings = FindSettingsInXmp(found.fXmp);
    if (!settings.empty() || image.get_string(VIPS_META_LOADER) != std::string("heifload_source")) {
      return settings;
    }
    return FindSettingsInXmp(CutPacket(ReadBytes(pFile)));  // libvips reads no XMP of AVIF
  } catch (const vips::VError&) {
    vips_error_clear();
    return "";
  }
}

}  // namespace Photo
