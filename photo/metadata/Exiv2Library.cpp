#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <utility>

#include "photo/io/BigEndian.h"
#include "photo/metadata/Exiv2Blocks.h"
#include "photo/metadata/Exiv2Corrections.h"
#include "photo/metadata/MetadataHead.h"
#include "photo/metadata/MetadataLibrary.h"

namespace Photo {
namespace {

constexpr char kThumbnail[] = "Exif.Thumbnail.JPEGInterchangeFormat";

/// The PNG with EXIF in a chunk of its own behind the header. Exiv2 would write it into a text chunk, where
/// few programs look.
std::string WithExifChunk(std::string pPng, const Exiv2::ExifData& pExif) {
  constexpr std::size_t kHeaderEnd = 33;
  Exiv2::Blob blob;
  Exiv2::ExifParser::encode(blob, Exiv2::littleEndian, pExif);
  std::string body = "eXIf";
  body.append(blob.begin(), blob.end());
  std::string chunk;
  AppendBigEndian(chunk, static_cast<std::uint32_t>(blob.size()), 4);
  chunk += body;
  AppendBigEndian(chunk, crc32(0, ToBytes(body), static_cast<uInt>(body.size())), 4);
  return pPng.insert(kHeaderEnd, chunk);
}

/// Drops the rest of the EXIF that libvips makes up for a JPEG.
void KeepResolutionAlone(Exiv2::ExifData& pExif) {
  const auto isOther = [](const Exiv2::Exifdatum& pDatum) {
    const std::string key = pDatum.key();
    return key != "Exif.Image.XResolution" && key != "Exif.Image.YResolution" &&
           key != "Exif.Image.ResolutionUnit";
  };
  for (auto datum = pExif.begin(); datum != pExif.end();) {
    datum = isOther(*datum) ? pExif.erase(datum) : std::next(datum);
  }
}

bool IsJpeg(const std::string& pPath) {
  return std::ifstream(pPath, std::ios::binary).get() == 0xff;
}

/// The new head for a file's. Throws what Exiv2 throws.
std::string PutIn(const sMetadataHead& pHead, const sParsed& pBlocks) {
  const std::string& head = pHead.fFile;
  auto image = Exiv2::ImageFactory::open(ToBytes(head), static_cast<long>(head.size()));
  image->readMetadata();
  const bool isTiff = image->imageType() == Exiv2::ImageType::tiff;
  Exiv2::ExifData& exif = image->exifData();
  const bool isPng = image->imageType() == Exiv2::ImageType::png;
  if (!isTiff) KeepResolutionAlone(exif);
  for (const Exiv2::Exifdatum& datum : pBlocks.fExif) {
    // a chunk follows; a thumbnail would be a second page
    if (isPng || (isTiff && datum.groupName() == "Thumbnail")) continue;
    if (exif.findKey(Exiv2::ExifKey(datum.key())) == exif.end()) exif.add(datum);
  }
  image->setIptcData(pBlocks.fIptc);
  image->setXmpData(pBlocks.fXmp);
  image->writeMetadata();
  Exiv2::BasicIo& io = image->io();
  io.open();
  std::string file(reinterpret_cast<const char*>(io.mmap()), io.size());
  return isPng && !pBlocks.fExif.empty() ? WithExifChunk(std::move(file), pBlocks.fExif) : file;
}

/// Tries each kind of block alone, and clears those that cannot be written into the head.
void DropFaulty(const sMetadataHead& pHead, sParsed& pBlocks, std::vector<std::string>& pWarnings) {
  const auto isFaulty = [&](const char* pName, const sParsed& pPart) {
    const std::string fault = FindFault([&] { PutIn(pHead, pPart); });
    WarnOfFault(std::string("its ") + pName + " is left out", fault, pWarnings);
    return !fault.empty();
  };
  if (isFaulty("EXIF", {pBlocks.fExif, {}, {}})) pBlocks.fExif.clear();
  if (isFaulty("IPTC", {{}, pBlocks.fIptc, {}})) pBlocks.fIptc.clear();
  if (isFaulty("XMP", {{}, {}, pBlocks.fXmp})) pBlocks.fXmp.clear();
}

/// What libvips writes, whoever writes the blocks.
bool IsLeftToVips(const sVipsField& pField) {
  return pField.fName.starts_with("png-comment-") || pField.fName.starts_with("resolution-");
}

class cExiv2Library : public cMetadataLibrary {
 public:
  sMetadataBlocks Read(const std::string& pFile, const sMetadataBlocks& pFound,
                       std::vector<std::string>& pWarnings) const override {
    sParsed parsed = ParseFile(pFile, pFound, pWarnings);
    sMetadataBlocks blocks = pFound;
    blocks.fHasThumbnail = parsed.fExif.findKey(Exiv2::ExifKey(kThumbnail)) != parsed.fExif.end();
    std::erase_if(blocks.fFields, [](const sVipsField& pField) { return !IsLeftToVips(pField); });
    DropFileFields(parsed.fExif);
    PackBlocks(parsed, false, blocks, pWarnings);
    return blocks;
  }

  sMetadataBlocks Make(const std::vector<sExifField>& pExif,
                       std::vector<std::string>& pWarnings) const override {
    sParsed parsed;
    for (const sExifField& field : pExif) {
      const auto set = [&] { parsed.fExif[field.fKey] = field.fText; };
      WarnOfFault(field.fKey + " is left out", FindFault(set), pWarnings);
    }
    sMetadataBlocks blocks;
    PackBlocks(parsed, false, blocks, pWarnings);
    return blocks;
  }

  tExifTexts ListExif(const sMetadataBlocks& pBlocks) const override {
    tExifTexts texts;
    sMetadataBlocks exif;
    exif.fExif = pBlocks.fExif;
    for (const Exiv2::Exifdatum& datum : ParseBlocks(exif).fExif) {
      const std::string group = datum.groupName();
      const bool isNote = group != "Image" && group != "Photo" && group != "GPSInfo" && group != "Iop";
      if (!isNote && datum.tagName() != "MakerNote") texts.emplace(datum.key(), datum.toString());
    }
    return texts;
  }

  sMetadataBlocks Correct(const sMetadataBlocks& pBlocks, const sCorrections& pCorrections,
                          std::vector<std::string>& pWarnings) const override {
    sMetadataBlocks blocks = pBlocks;
    if (!pCorrections.fKinds.AreAll()) blocks.fFields.clear();
    PackBlocks(ParseCorrected(pBlocks, pCorrections, pWarnings), true, blocks, pWarnings);
    blocks.fIptc.clear();  // libvips writes none from bare data sets
    return blocks;
  }

  bool WritesFiles() const override { return true; }

  void Write(const std::string& pPath, const sMetadataBlocks& pBlocks, const sCorrections& pCorrections,
             std::vector<std::string>& pWarnings) const override {
    sParsed sound = ParseCorrected(pBlocks, pCorrections, pWarnings);
    if (sound.IsEmpty() && !IsJpeg(pPath)) return;
    const sMetadataHead head = ReadMetadataHead(pPath);
    std::string completed;
    const auto put = [&] { completed = PutIn(head, sound); };
    if (!FindFault(put).empty()) {
      DropFaulty(head, sound, pWarnings);
      completed.clear();
      const std::string fault = FindFault(put);
      if (completed.empty()) return WarnOfFault("its metadata are left out", fault, pWarnings);
    }
    ReplaceMetadataHead(pPath, head, completed);
  }
};

}  // namespace

const cMetadataLibrary& GetMetadataLibrary() {
  static const cExiv2Library kLibrary;
  return kLibrary;
}

bool HasExiv2() {
  return true;
}

std::string GetExiv2Version() {
  return Exiv2::versionString();
}

}  // namespace Photo
