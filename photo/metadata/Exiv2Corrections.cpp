#include "photo/metadata/Exiv2Corrections.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>

#include "photo/metadata/PanoramaSizes.h"

namespace Photo {
namespace {

/// Tags of a first image that describe how its samples lie in the input's file, or that hold other blocks.
bool IsStorageTag(std::uint16_t pTag) {
  constexpr std::uint16_t kTags[] = {
      0x0fe, 0x0ff, 0x100, 0x101, 0x102, 0x103, 0x106, 0x107,  0x108,  0x109,  0x10a, 0x111, 0x115,
      0x116, 0x117, 0x118, 0x119, 0x11c, 0x122, 0x123, 0x124,  0x125,  0x12d,  0x13d, 0x13e, 0x13f,
      0x140, 0x141, 0x142, 0x143, 0x144, 0x145, 0x14a, 0x14c,  0x14d,  0x14e,  0x150, 0x152, 0x153,
      0x154, 0x155, 0x15b, 0x211, 0x212, 0x214, 0x2bc, 0x83bb, 0x8649, 0x8773, 0x935c};
  const bool isOldJpeg = pTag >= 0x200 && pTag <= 0x209;
  const bool isRaw = (pTag >= 0x828d && pTag <= 0x828f) || (pTag >= 0xc612 && pTag <= 0xcd50);
  return isOldJpeg || isRaw || std::find(std::begin(kTags), std::end(kTags), pTag) != std::end(kTags);
}

/// Fields that describe the input's file, or images in it that the result does not have.
bool IsOfFile(const Exiv2::Exifdatum& pDatum) {
  const std::string group = pDatum.groupName();
  if (group == "Image") return IsStorageTag(pDatum.tag());
  return group == "Thumbnail" || group == "MpfInfo" || group.starts_with("SubImage") ||
         group.starts_with("SubThumb") || group.starts_with("Image");
}

/// Properties that describe the input's file, a second picture or film in it, or how a raw file was
/// developed, which programs would do to the result again.
bool IsOfFile(const Exiv2::Xmpdatum& pDatum) {
  constexpr std::string_view kStarts[] = {"hdrgm.",
                                          "Container.",
                                          "GCamera.Motion",
                                          "GCamera.MicroVideo",
                                          "quorvane.",
                                          "crs.",
                                          "tiff.BitsPerSample",
                                          "tiff.Compression",
                                          "tiff.PhotometricInterpretation",
                                          "tiff.PlanarConfiguration",
                                          "tiff.SamplesPerPixel",
                                          "tiff.YCbCr",
                                          "xmp.Thumbnails",
                                          "xmpNote.HasExtendedXMP"};
  const std::string name = pDatum.groupName() + "." + pDatum.tagName();
  return std::any_of(std::begin(kStarts), std::end(kStarts),
                     [&](std::string_view pStart) { return name.starts_with(pStart); });
}

template <class tData>
void DropFields(tData& pData) {
  for (auto datum = pData.begin(); datum != pData.end();) {
    datum = IsOfFile(*datum) ? pData.erase(datum) : std::next(datum);
  }
}

template <class tKey, class tData>
bool Has(const tData& pData, const char* pKey) {
  return pData.findKey(tKey(pKey)) != pData.end();
}

template <class tKey, class tValue, class tData>
void SetWhereThere(tData& pData, const char* pKey, int pValue) {
  if (Has<tKey>(pData, pKey)) pData[pKey] = static_cast<tValue>(pValue);
}

/// The index accompanies the fields of the exposure (Photo). EXIF has no other way to name Adobe RGB (1998).
void SetInteropIndex(Exiv2::ExifData& pExif, const std::string& pIndex) {
  const Exiv2::ExifKey key("Exif.Iop.InteroperabilityIndex");
  const auto index = pExif.findKey(key);
  const bool isThere = index != pExif.end();
  if (pIndex.empty()) {
    if (isThere) pExif.erase(index);
    return;
  }
  const bool hasPhoto = std::any_of(pExif.begin(), pExif.end(), [](const Exiv2::Exifdatum& pDatum) {
    return pDatum.groupName() == "Photo";
  });
  if (isThere || hasPhoto) pExif[key.key()] = pIndex;
}

void CorrectExif(Exiv2::ExifData& pExif, const sCorrections& pCorrections) {
  using Exiv2::ExifKey;
  const sPictureFacts& facts = pCorrections.fFacts;
  SetWhereThere<ExifKey, std::uint16_t>(pExif, "Exif.Image.Orientation", 1);
  SetWhereThere<ExifKey, std::uint32_t>(pExif, "Exif.Photo.PixelXDimension", facts.fWidth);
  SetWhereThere<ExifKey, std::uint32_t>(pExif, "Exif.Photo.PixelYDimension", facts.fHeight);
  if (facts.fExifColorSpace != 0) {
    SetWhereThere<ExifKey, std::uint16_t>(pExif, "Exif.Photo.ColorSpace", facts.fExifColorSpace);
  }
  SetInteropIndex(pExif, facts.fInteropIndex);
  const std::string& thumbnail = pCorrections.fThumbnail;
  if (thumbnail.empty()) return;
  constexpr std::uint16_t kInch = 2;
  Exiv2::ExifThumb(pExif).setJpegThumbnail(ToBytes(thumbnail), static_cast<long>(thumbnail.size()), {72, 1},
                                           {72, 1}, kInch);
}

void FitPanorama(Exiv2::XmpData& pXmp, const sPictureFacts& pFacts) {
  const std::string start = "Xmp.GPano.";
  const auto get = [&](const std::string& pName) -> std::optional<long> {
    const auto datum = pXmp.findKey(Exiv2::XmpKey(start + pName));
    if (datum == pXmp.end() || datum->count() == 0) return std::nullopt;
    const long number = datum->toLong();
    return datum->value().ok() ? std::optional(number) : std::nullopt;
  };
  for (const auto& [name, number] : FitPanoramaSizes(get, pFacts.fWidth, pFacts.fHeight)) {
    pXmp[start + name] = std::to_string(number);
  }
}

void CorrectXmp(Exiv2::XmpData& pXmp, const sPictureFacts& pFacts) {
  DropFields(pXmp);
  const struct {
    const char* fKey;
    int fValue;
  } values[] = {{"Xmp.tiff.Orientation", 1},
                {"Xmp.tiff.ImageWidth", pFacts.fWidth},
                {"Xmp.tiff.ImageLength", pFacts.fHeight},
                {"Xmp.exif.PixelXDimension", pFacts.fWidth},
                {"Xmp.exif.PixelYDimension", pFacts.fHeight},
                {"Xmp.exif.ColorSpace", pFacts.fExifColorSpace}};
  for (const auto& row : values) {
    if (row.fValue != 0 && Has<Exiv2::XmpKey>(pXmp, row.fKey)) pXmp[row.fKey] = std::to_string(row.fValue);
  }
  FitPanorama(pXmp, pFacts);
}

}  // namespace

void DropFileFields(Exiv2::ExifData& pExif) {
  DropFields(pExif);
}

sParsed ParseCorrected(const sMetadataBlocks& pBlocks, const sCorrections& pCorrections,
                       std::vector<std::string>& pWarnings) {
  const sMetadataKinds& kinds = pCorrections.fKinds;
  sParsed parsed = ParseBlocks(pBlocks);
  if (!kinds.fExif) parsed.fExif.clear();
  if (!kinds.fIptc) parsed.fIptc.clear();
  if (!kinds.fXmp) parsed.fXmp.clear();
  const auto correct = [&] {
    if (!parsed.fExif.empty()) CorrectExif(parsed.fExif, pCorrections);
    CorrectXmp(parsed.fXmp, pCorrections.fFacts);
    if (!pCorrections.fSettings.empty() && kinds.fXmp) {
      parsed.fXmp["Xmp.quorvane.Settings"] = pCorrections.fSettings;
    }
  };
  WarnOfFault("its metadata are not corrected", FindFault(correct), pWarnings);
  return parsed;
}

}  // namespace Photo
