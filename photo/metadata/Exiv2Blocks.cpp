#include "photo/metadata/Exiv2Blocks.h"

#include <cstdint>
#include <exiv2/webpimage.hpp>
#include <filesystem>
#include <utility>

namespace Photo {
namespace {

#ifdef EXV_ENABLE_BMFF
constexpr int kBmff = Exiv2::ImageType::bmff;  // HEIF, AVIF
void EnableBmff() {
  Exiv2::enableBMFF(true);
}
#else
constexpr int kBmff = -1;
void EnableBmff() {}
#endif

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

bool HasReadType(int pType) {
  using namespace Exiv2::ImageType;
  return pType == jpeg || pType == png || pType == tiff || pType == webp || pType == kBmff;
}

/// pPath: absolute, since other names could be taken for addresses.
void ReadFromFile(const std::string& pPath, sParsed& pTo, std::vector<std::string>& pWarnings) {
  const auto image = Exiv2::ImageFactory::open(pPath, false);
  WarnOfFault("its metadata are damaged; what could be read is kept",
              FindFault([&] { image->readMetadata(); }), pWarnings);
  pTo = {image->exifData(), image->iptcData(), image->xmpData()};
}

void ParseExif(const std::string& pBlock, Exiv2::ExifData& pTo) {
  Exiv2::ExifParser::decode(pTo, ToBytes(pBlock), static_cast<std::uint32_t>(pBlock.size()));
}

void ReadFromBlocks(const sMetadataBlocks& pFound, sParsed& pTo, std::vector<std::string>& pWarnings) {
  const auto decode = [&] { ParseExif(pFound.fExif, pTo.fExif); };
  const auto parse = [&] { Exiv2::XmpParser::decode(pTo.fXmp, pFound.fXmp); };
  if (!pFound.fExif.empty())
    WarnOfFault("its EXIF is damaged; what could be read is kept", FindFault(decode), pWarnings);
  if (!pFound.fXmp.empty())
    WarnOfFault("its XMP is damaged; what could be read is kept", FindFault(parse), pWarnings);
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

}  // namespace

cFaultScope::cFaultScope()
    : fLock(gMutex), fHandler(Exiv2::LogMsg::handler()), fLevel(Exiv2::LogMsg::level()) {
  StartExiv2();
  Exiv2::LogMsg::setLevel(Exiv2::LogMsg::error);
  Exiv2::LogMsg::setHandler(Note);
  gFault.clear();
}

cFaultScope::~cFaultScope() {
  Exiv2::LogMsg::setHandler(fHandler);
  Exiv2::LogMsg::setLevel(fLevel);
}

std::string cFaultScope::Take() {
  const std::string fault = std::exchange(gFault, "");
  return fault.substr(0, fault.find('\n'));
}

void cFaultScope::Note(int, const char* pText) {
  if (gFault.empty()) gFault = pText;
}

void WarnOfFault(const std::string& pWhat, const std::string& pFault, std::vector<std::string>& pWarnings) {
  if (!pFault.empty()) pWarnings.push_back(pWhat + " (" + pFault + ")");
}

const Exiv2::byte* ToBytes(std::string_view pText) {
  return reinterpret_cast<const Exiv2::byte*>(pText.data());
}

sParsed ParseFile(const std::string& pFile, const sMetadataBlocks& pFound,
                  std::vector<std::string>& pWarnings) {
  sParsed parsed;
  const auto read = [&] {
    const std::string path = pFile.empty() ? "" : std::filesystem::absolute(pFile).string();
    if (!path.empty() && HasReadType(Exiv2::ImageFactory::getType(path))) {
      ReadFromFile(path, parsed, pWarnings);
    } else {
      ReadFromBlocks(pFound, parsed, pWarnings);
    }
  };
  WarnOfFault("its metadata cannot be read", FindFault(read), pWarnings);
  return parsed;
}

sParsed ParseBlocks(const sMetadataBlocks& pBlocks) {
  sParsed parsed;
  FindFault([&] {
    if (!pBlocks.fExif.empty()) ParseExif(pBlocks.fExif, parsed.fExif);
    if (!pBlocks.fXmp.empty()) Exiv2::XmpParser::decode(parsed.fXmp, pBlocks.fXmp);
    const auto iptc = static_cast<std::uint32_t>(pBlocks.fIptc.size());
    if (iptc > 0) Exiv2::IptcParser::decode(parsed.fIptc, ToBytes(pBlocks.fIptc), iptc);
  });
  return parsed;
}

void PackBlocks(const sParsed& pParsed, bool pIsExifShort, sMetadataBlocks& pTo,
                std::vector<std::string>& pWarnings) {
  pTo.fExif = pTo.fIptc = pTo.fXmp = "";
  const auto pack = [&](const char* pName, std::string& pBlock, const auto& pWork) {
    const std::string fault = FindFault(pWork);
    if (pBlock.empty()) WarnOfFault(std::string("its ") + pName + " is left out", fault, pWarnings);
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

}  // namespace Photo
