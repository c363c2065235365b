#include "photo/metadata/JxlContainer.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string_view>

#include "photo/io/BigEndian.h"
#include "photo/io/FileBytes.h"

namespace Cli {
namespace {

constexpr std::string_view kSignature("\0\0\0\x0cJXL \r\n\x87\n", 12);
constexpr std::string_view kFileType(
    "\0\0\0\x14"
    "ftypjxl \0\0\0\0jxl ",
    20);
constexpr std::string_view kNoOffset("\0\0\0\0", 4);  // from there to the start of EXIF
constexpr std::uint64_t kToEnd = ~std::uint64_t{0};

void AppendBox(std::string& pTo, std::string_view pType, std::string_view pStart, std::string_view pContent) {
  constexpr std::uint64_t kHeader = 8;
  const std::uint64_t size = kHeader + pStart.size() + pContent.size();
  const bool isLong = size > 0xffffffff;
  AppendBigEndian(pTo, isLong ? 1 : size, 4);
  pTo += pType;
  if (isLong) AppendBigEndian(pTo, size + 8, 8);
  pTo.append(pStart).append(pContent);
}

struct sBoxHeader {
  std::string fType;        ///< Empty where no box begins.
  std::size_t fLength = 0;  ///< Of the header itself.
  std::uint64_t fSize = 0;  ///< Of the whole box; kToEnd for the rest of the file.
};

/// pStart: the first 16 bytes of a box, or fewer where the file ends.
sBoxHeader ReadHeader(std::string_view pStart) {
  if (pStart.size() < 8) return {};
  sBoxHeader header{std::string(pStart.substr(4, 4)), 8, ReadBigEndian(pStart.substr(0, 4))};
  if (header.fSize == 0) header.fSize = kToEnd;
  if (header.fSize == 1) {
    if (pStart.size() < 16) return {};
    header.fLength = 16;
    header.fSize = ReadBigEndian(pStart.substr(8, 8));
  }
  return header.fSize < header.fLength ? sBoxHeader{} : header;
}

/// Of an Exif box: a number of four bytes tells how many follow before it begins.
std::string_view SkipOffset(std::string_view pContent) {
  if (pContent.size() < 4) return {};
  const std::uint64_t start = 4 + ReadBigEndian(pContent.substr(0, 4));
  return start < pContent.size() ? pContent.substr(static_cast<std::size_t>(start)) : std::string_view();
}

bool IsMetadata(std::string_view pType) {
  return pType == "Exif" || pType == "xml ";
}

void Take(const std::string& pType, const std::string& pContent, sJxlMetadata& pTo) {
  if (pType == "Exif" && pTo.fExif.empty()) pTo.fExif = SkipOffset(pContent);
  if (pType == "xml " && pTo.fXmp.empty()) pTo.fXmp = pContent;
  if (pType == "brob") pTo.fHasCompressed |= IsMetadata(pContent.substr(0, 4));
}

/// Of a box's content: all metadata, but the type alone of what is compressed.
std::uint64_t CountWanted(std::string_view pType, std::uint64_t pContent) {
  if (pType == "brob") return std::min<std::uint64_t>(pContent, 4);
  return IsMetadata(pType) ? pContent : 0;
}

/// Empty where they cannot be read.
std::string ReadAt(std::ifstream& pStream, std::uint64_t pAt, std::uint64_t pCount) {
  std::string bytes(static_cast<std::size_t>(pCount), '\0');
  pStream.seekg(static_cast<std::streamoff>(pAt));
  if (!pStream.read(bytes.data(), static_cast<std::streamsize>(pCount))) bytes.clear();
  return bytes;
}

/// A file in boxes, without metadata.
struct sParts {
  std::string fHead;  ///< What has to come first.
  std::string fRest;
};

sParts TakeApart(const std::string& pFile) {
  sParts parts{std::string(kSignature), ""};
  if (!pFile.starts_with(kSignature)) {  // a bare codestream
    parts.fHead += kFileType;
    AppendBox(parts.fRest, "jxlc", "", pFile);
    return parts;
  }
  for (std::size_t at = kSignature.size(); at < pFile.size();) {
    std::string_view box = std::string_view(pFile).substr(at);
    const sBoxHeader header = ReadHeader(box.substr(0, 16));
    if (!header.fType.empty() && header.fSize < box.size()) box = box.substr(0, header.fSize);
    const bool isHead = (header.fType == "ftyp" || header.fType == "jxll") && header.fSize == box.size();
    if (!IsMetadata(header.fType)) (isHead ? parts.fHead : parts.fRest) += box;
    at += box.size();
  }
  return parts;
}

}  // namespace

sJxlMetadata ReadJxlMetadata(const std::string& pFile) {
  std::ifstream stream(pFile, std::ios::binary | std::ios::ate);
  const auto size = static_cast<std::uint64_t>(std::max<std::streamoff>(stream.tellg(), 0));
  sJxlMetadata metadata;
  if (ReadAt(stream, 0, std::min<std::uint64_t>(size, kSignature.size())) != kSignature) return metadata;
  for (std::uint64_t at = kSignature.size(); at < size;) {
    const std::uint64_t left = size - at;
    const sBoxHeader header = ReadHeader(ReadAt(stream, at, std::min<std::uint64_t>(left, 16)));
    if (header.fType.empty() || header.fLength > left) break;
    const std::uint64_t content = std::min(header.fSize, left) - header.fLength;
    Take(header.fType, ReadAt(stream, at + header.fLength, CountWanted(header.fType, content)), metadata);
    if (header.fSize > left) break;
    at += header.fSize;
  }
  return metadata;
}

void WriteJxlMetadata(const std::string& pPath, const sJxlMetadata& pMetadata) {
  if (pMetadata.fExif.empty() && pMetadata.fXmp.empty()) return;
  const sParts parts = TakeApart(ReadBytes(pPath));
  std::string metadata;
  if (!pMetadata.fExif.empty()) AppendBox(metadata, "Exif", kNoOffset, pMetadata.fExif);
  if (!pMetadata.fXmp.empty()) AppendBox(metadata, "xml ", "", pMetadata.fXmp);
  WriteBytes(pPath, parts.fHead + metadata + parts.fRest);
}

}  // namespace Cli
