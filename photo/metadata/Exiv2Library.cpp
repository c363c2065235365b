#include <zlib.h>

#include <algorithm>
#include <exception>
#include <exiv2/exiv2.hpp>
#include <exiv2/webpimage.hpp>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>

#include "photo/io/BigEndian.h"
#include "photo/metadata/MetadataHead.h"
#include "photo/metadata/MetadataLibrary.h"
#include "photo/metadata/PanoramaSizes.h"

namespace Cli {
namespace {

/// The blocks as Exiv2 has them.
struct sParsed {
  Exiv2::ExifData fExif;
  Exiv2::IptcData fIptc;
  Exiv2::XmpData fXmp;

  bool IsEmpty() const { return fExif.empty() && fIptc.empty() && fXmp.empty(); }
};

#ifdef EXV_ENABLE_BMFF
constexpr int kBmff = Exiv2::ImageType::bmff;  // HEIF, AVIF
void EnableBmff() {
  Exiv2::enableBMFF(true);
}
#else
constexpr int kBmff = -1;
void EnableBmff() {}
#endif

/// Collects what Exiv2 reports while one of these lives, in place of its handler, which comes back after.
/// Exiv2 has one handler and one XMP toolkit for all threads, so these take turns.
class cFaultScope {
 public:
  cFaultScope() : fLock(gMutex), fHandler(Exiv2::LogMsg::handler()), fLevel(Exiv2::LogMsg::level()) {
    Exiv2::LogMsg::setLevel(Exiv2::LogMsg::error);
    Exiv2::LogMsg::setHandler(Note);
    gFault.clear();
  }
  cFaultScope(const cFaultScope&) = delete;
  cFaultScope& operator=(const cFaultScope&) = delete;
  ~cFaultScope() {
    Exiv2::LogMsg::setHandler(fHandler);
    Exiv2::LogMsg::setLevel(fLevel);
  }

  /// What was wrong first, on one line; it is forgotten then. Empty for nothing.
  std::string Take() {
    const std::string fault = std::exchange(gFault, "");
    return fault.substr(0, fault.find('\n'));
  }

 private:
  static void Note(int, const char* pText) {
    if (gFault.empty()) gFault = pText;
  }

  inline static std::recursive_mutex gMutex;
  inline static std::string gFault;

  std::lock_guard<std::recursive_mutex> fLock;
  Exiv2::LogMsg::Handler fHandler;
  Exiv2::LogMsg::Level fLevel;
};

/// The toolkit for XMP starts once a process.
void StartExiv2() {
  static const bool kStarted = [] {
    EnableBmff();
    Exiv2::XmpParser::initialize();
    Exiv2::XmpProperties::registerNs("urn:quorvane:xmp#", "quorvane");
    return true;
  }();
  static_cast<void>(kStarted);
}

/// What pWork throws, or Exiv2 reports meanwhile; empty when all went well.
template <class tWork>
std::string FaultOf(const tWork& pWork) {
  cFaultScope scope;
  StartExiv2();
  try {
    pWork();
    return scope.Take();
  } catch (const std::exception& error) {
    scope.Take();
    const std::string text = error.what();
    return text.empty() ? "no reason given" : text;
  }
}

void Warn(const std::string& pWhat, const std::string& pFault, std::vector<std::string>& pWarnings) {
  if (!pFault.empty()) pWarnings.push_back(pWhat + " (" + pFault + ")");
}

bool IsReadType(int pType) {
  using namespace Exiv2::ImageType;
  return pType == jpeg || pType == png || pType == tiff || pType == webp || pType == kBmff;
}

const Exiv2::byte* BytesOf(std::string_view pText) {
  return reinterpret_cast<const Exiv2::byte*>(pText.data());
}

/// pPath: absolute, since other names could be taken for addresses.
void ReadFromFile(const std::string& pPath, sParsed& pTo, std::vector<std::string>& pWarnings) {
  const auto image = Exiv2::ImageFactory::open(pPath, false);
  Warn("its metadata are damaged; what could be read is kept", FaultOf([&] { image->readMetadata(); }),
       pWarnings);
  pTo = {image->exifData(), image->iptcData(), image->xmpData()};
}

void ParseExif(const std::string& pBlock, Exiv2::ExifData& pTo) {
  Exiv2::ExifParser::decode(pTo, BytesOf(pBlock), static_cast<std::uint32_t>(pBlock.size()));
}

void ReadFromBlocks(const sMetadataBlocks& pFound, sParsed& pTo, std::vector<std::string>& pWarnings) {
  const auto decode = [&] { ParseExif(pFound.fExif, pTo.fExif); };
  const auto parse = [&] { Exiv2::XmpParser::decode(pTo.fXmp, pFound.fXmp); };
  if (!pFound.fExif.empty())
    Warn("its EXIF is damaged; what could be read is kept", FaultOf(decode), pWarnings);
  if (!pFound.fXmp.empty()) Warn("its XMP is damaged; what could be read is kept", FaultOf(parse), pWarnings);
}

/// From blocks that Exiv2 has written.
sParsed Parse(const sMetadataBlocks& pBlocks) {
  sParsed parsed;
  FaultOf([&] {
    if (!pBlocks.fExif.empty()) ParseExif(pBlocks.fExif, parsed.fExif);
    if (!pBlocks.fXmp.empty()) Exiv2::XmpParser::decode(parsed.fXmp, pBlocks.fXmp);
    const auto iptc = static_cast<std::uint32_t>(pBlocks.fIptc.size());
    if (iptc > 0) Exiv2::IptcParser::decode(parsed.fIptc, BytesOf(pBlocks.fIptc), iptc);
  });
  return parsed;
}

std::string ToText(const Exiv2::byte* pBytes, long pSize) {
  return pSize <= 0 ? ""
                    : std::string(reinterpret_cast<const char*>(pBytes), static_cast<std::size_t>(pSize));
}

std::string PackExif(const Exiv2::ExifData& pExif, bool pIsShort) {
  if (pIsShort) {
    Exiv2::Blob blob;
    Exiv2::ExifParser::encode(blob, Exiv2::littleEndian, pExif);
    return {blob.begin(), blob.end()};
  }
  Exiv2::MemIo io;
  Exiv2::TiffParser::encode(io, nullptr, 0, Exiv2::littleEndian, pExif, {}, {});
  return ToText(io.mmap(), static_cast<long>(io.size()));
}

/// What cannot be packed is left out.
void Pack(const sParsed& pParsed, bool pIsExifShort, sMetadataBlocks& pTo,
          std::vector<std::string>& pWarnings) {
  pTo.fExif = pTo.fIptc = pTo.fXmp = "";
  const auto pack = [&](const char* pName, std::string& pBlock, const auto& pWork) {
    const std::string fault = FaultOf(pWork);
    if (pBlock.empty()) Warn(std::string("its ") + pName + " is left out", fault, pWarnings);
  };
  if (!pParsed.fExif.empty()) {
    pack("EXIF", pTo.fExif, [&] { pTo.fExif = PackExif(pParsed.fExif, pIsExifShort); });
  }
  if (!pParsed.fIptc.empty()) {
    pack("IPTC", pTo.fIptc, [&] {
      const Exiv2::DataBuf buffer = Exiv2::IptcParser::encode(pParsed.fIptc);
      pTo.fIptc = ToText(buffer.pData_, buffer.size_);
    });
  }
  if (!pParsed.fXmp.empty()) {
    pack("XMP", pTo.fXmp, [&] { Exiv2::XmpParser::encode(pTo.fXmp, pParsed.fXmp); });
  }
}

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
bool IsOfInput(const Exiv2::Exifdatum& pDatum) {
  const std::string group = pDatum.groupName();
  if (group == "Image") return IsStorageTag(pDatum.tag());
  return group == "Thumbnail" || group == "MpfInfo" || group.starts_with("SubImage") ||
         group.starts_with("SubThumb") || group.starts_with("Image");
}

/// Properties that describe the input's file, a second picture or film in it, or how a raw file was
/// developed, which programs would do to the result again.
bool IsOfInput(const Exiv2::Xmpdatum& pDatum) {
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
void DropWhatIsOfInput(tData& pData) {
  for (auto datum = pData.begin(); datum != pData.end();) {
    datum = IsOfInput(*datum) ? pData.erase(datum) : std::next(datum);
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
  Exiv2::ExifThumb(pExif).setJpegThumbnail(BytesOf(thumbnail), static_cast<long>(thumbnail.size()), {72, 1},
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
  DropWhatIsOfInput(pXmp);
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
  AppendBigEndian(chunk, crc32(0, BytesOf(body), static_cast<uInt>(body.size())), 4);
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
  auto image = Exiv2::ImageFactory::open(BytesOf(head), static_cast<long>(head.size()));
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
    const std::string fault = FaultOf([&] { PutIn(pHead, pPart); });
    Warn(std::string("its ") + pName + " is left out", fault, pWarnings);
    return !fault.empty();
  };
  if (isFaulty("EXIF", {pBlocks.fExif, {}, {}})) pBlocks.fExif.clear();
  if (isFaulty("IPTC", {{}, pBlocks.fIptc, {}})) pBlocks.fIptc.clear();
  if (isFaulty("XMP", {{}, {}, pBlocks.fXmp})) pBlocks.fXmp.clear();
}

sParsed MakeCorrected(const sMetadataBlocks& pBlocks, const sCorrections& pCorrections,
                      std::vector<std::string>& pWarnings) {
  const sMetadataKinds& kinds = pCorrections.fKinds;
  sParsed parsed = Parse(pBlocks);
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
  Warn("its metadata are not corrected", FaultOf(correct), pWarnings);
  return parsed;
}

/// What libvips writes, whoever writes the blocks.
bool IsLeftToVips(const sVipsField& pField) {
  return pField.fName.starts_with("png-comment-") || pField.fName.starts_with("resolution-");
}

class cExiv2Library : public cMetadataLibrary {
 public:
  sMetadataBlocks Read(const std::string& pFile, const sMetadataBlocks& pFound,
                       std::vector<std::string>& pWarnings) const override {
    sParsed parsed;
    const auto read = [&] {
      const std::string path = pFile.empty() ? "" : std::filesystem::absolute(pFile).string();
      if (!path.empty() && IsReadType(Exiv2::ImageFactory::getType(path))) {
        ReadFromFile(path, parsed, pWarnings);
      } else {
        ReadFromBlocks(pFound, parsed, pWarnings);
      }
    };
    Warn("its metadata cannot be read", FaultOf(read), pWarnings);
    sMetadataBlocks blocks = pFound;
    blocks.fHasThumbnail = Has<Exiv2::ExifKey>(parsed.fExif, "Exif.Thumbnail.JPEGInterchangeFormat");
    std::erase_if(blocks.fFields, [](const sVipsField& pField) { return !IsLeftToVips(pField); });
    DropWhatIsOfInput(parsed.fExif);
    Pack(parsed, false, blocks, pWarnings);
    return blocks;
  }

  sMetadataBlocks Make(const std::vector<sExifField>& pExif,
                       std::vector<std::string>& pWarnings) const override {
    sParsed parsed;
    for (const sExifField& field : pExif) {
      const auto set = [&] { parsed.fExif[field.fKey] = field.fText; };
      Warn(field.fKey + " is left out", FaultOf(set), pWarnings);
    }
    sMetadataBlocks blocks;
    Pack(parsed, false, blocks, pWarnings);
    return blocks;
  }

  tExifTexts ListExif(const sMetadataBlocks& pBlocks) const override {
    tExifTexts texts;
    sMetadataBlocks exif;
    exif.fExif = pBlocks.fExif;
    for (const Exiv2::Exifdatum& datum : Parse(exif).fExif) {
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
    Pack(MakeCorrected(pBlocks, pCorrections, pWarnings), true, blocks, pWarnings);
    blocks.fIptc.clear();  // libvips writes none from bare data sets
    return blocks;
  }

  bool WritesFiles() const override { return true; }

  void Write(const std::string& pPath, const sMetadataBlocks& pBlocks, const sCorrections& pCorrections,
             std::vector<std::string>& pWarnings) const override {
    sParsed sound = MakeCorrected(pBlocks, pCorrections, pWarnings);
    if (sound.IsEmpty() && !IsJpeg(pPath)) return;
    const sMetadataHead head = ReadMetadataHead(pPath);
    std::string completed;
    const auto put = [&] { completed = PutIn(head, sound); };
    if (!FaultOf(put).empty()) {
      DropFaulty(head, sound, pWarnings);
      completed.clear();
      const std::string fault = FaultOf(put);
      if (completed.empty()) return Warn("its metadata are left out", fault, pWarnings);
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

}  // namespace Cli
