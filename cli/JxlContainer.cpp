#include "cli/JxlContainer.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string_view>

#include "cli/FileBytes.h"

namespace Cli {
namespace {

constexpr std::string_view kSignature("\0\0\0\x0cJXL \r\n\x87\n", 12);
constexpr std::string_view kFileType(
    "\0\0\0\x14"
    "ftypjxl \0\0\0\0jxl ",
    20);
constexpr std::string_view kNoOffset("\0\0\0\0", 4);  // from there to the start of EXIF
constexpr std::uint64_t kToEnd = ~std::uint64_t{0};

std::uint64_t ReadBigEndian(std::string_view pBytes) {
  std::uint64_t number = 0;
  for (const char byte : pBytes) number = number << 8 | static_cast<unsigned char>(byte);
  return number;
}

void AppendBigEndian(std::string& pTo, std::uint64_t pNumber, int pBytes) {
  for (int i = pBytes - 1; i >= 0; --i) pTo += static_cast<char>(pNumber >> (8 * i) & 0xff);
}

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

std::string_view Cut(std::string_view pFile, std::size_t pAt, std::uint64_t pSize) {
  return pFile.substr(pAt, static_cast<std::size_t>(std::min<std::uint64_t>(pSize, pFile.size() - pAt)));
}

}  // namespace

sJxlMetadata ReadJxlMetadata(const std::string& pFile) {
  std::ifstream stream(pFile, std::ios::binary | std::ios::ate);
  const auto size = static_cast<std::uint64_t>(std::max<std::streamoff>(stream.tellg(), 0));
  const auto read = [&](std::uint64_t pAt, std::uint64_t pCount) {
    std::string bytes(static_cast<std::size_t>(pAt < size ? std::min(pCount, size - pAt) : 0), '\0');
    stream.seekg(static_cast<std::streamoff>(pAt));
    if (!stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()))) bytes.clear();
    return bytes;
  };
  sJxlMetadata metadata;
  if (read(0, kSignature.size()) != kSignature) return metadata;
  for (std::uint64_t at = kSignature.size(); at < size;) {
    const sBoxHeader header = ReadHeader(read(at, 16));
    if (header.fType.empty()) break;
    const std::uint64_t content = header.fSize - header.fLength;
    if (IsMetadata(header.fType) || header.fType == "brob") {
      const std::uint64_t wanted = header.fType == "brob" ? std::min<std::uint64_t>(content, 4) : content;
      Take(header.fType, read(at + header.fLength, wanted), metadata);
    }
    if (header.fSize > size - at) break;
    at += header.fSize;
  }
  return metadata;
}

void WriteJxlMetadata(const std::string& pPath, const sJxlMetadata& pMetadata) {
  if (pMetadata.fExif.empty() && pMetadata.fXmp.empty()) return;
  const std::string file = ReadBytes(pPath);
  const bool isBare = !file.starts_with(kSignature);
  std::string head(kSignature);
  std::string metadata;
  std::string rest;
  if (!pMetadata.fExif.empty()) AppendBox(metadata, "Exif", kNoOffset, pMetadata.fExif);
  if (!pMetadata.fXmp.empty()) AppendBox(metadata, "xml ", "", pMetadata.fXmp);
  if (isBare) {
    head += kFileType;
    AppendBox(rest, "jxlc", "", file);
  }
  for (std::size_t at = isBare ? file.size() : kSignature.size(); at < file.size();) {
    const sBoxHeader header = ReadHeader(std::string_view(file).substr(at, 16));
    const std::string_view box = Cut(file, at, header.fType.empty() ? kToEnd : header.fSize);
    const bool isHead = header.fType == "ftyp" || header.fType == "jxll";
    if (!IsMetadata(header.fType)) (isHead ? head : rest) += box;
    at += box.size();
  }
  WriteBytes(pPath, head + metadata + rest);
}

}  // namespace Cli
