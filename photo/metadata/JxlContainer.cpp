#include "photo/metadata/JxlContainer.h"

#include <jxl/decode.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>

#include "photo/io/BigEndian.h"
#include "photo/io/FileBytes.h"
#include "photo/io/FileReader.h"
#include "photo/io/LazyLibrary.h"

namespace Photo {
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
  std::size_t fLength = 0;  ///< The header's own bytes.
  std::uint64_t fSize = 0;  ///< The whole box; kToEnd for the rest of the file.
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

/// EXIF begins in its box after an offset, which is a number of four bytes itself.
std::string_view SkipOffset(std::string_view pContent) {
  if (pContent.size() < 4) return {};
  const std::uint64_t start = 4 + ReadBigEndian(pContent.substr(0, 4));
  return start < pContent.size() ? pContent.substr(static_cast<std::size_t>(start)) : std::string_view();
}

bool IsMetadata(std::string_view pType) {
  return pType == "Exif" || pType == "xml ";
}

struct sJxlLibrary {
  cLazyLibrary fLibrary{QUORVANE_JXL_LIBRARY};
  PHOTO_LAZY_FUNCTION(JxlDecoderCreate);
  PHOTO_LAZY_FUNCTION(JxlDecoderDestroy);
  PHOTO_LAZY_FUNCTION(JxlDecoderSubscribeEvents);
  PHOTO_LAZY_FUNCTION(JxlDecoderSetDecompressBoxes);
  PHOTO_LAZY_FUNCTION(JxlDecoderProcessInput);
  PHOTO_LAZY_FUNCTION(JxlDecoderReleaseInput);
  PHOTO_LAZY_FUNCTION(JxlDecoderSetInput);
  PHOTO_LAZY_FUNCTION(JxlDecoderCloseInput);
  PHOTO_LAZY_FUNCTION(JxlDecoderGetBoxType);
  PHOTO_LAZY_FUNCTION(JxlDecoderReleaseBoxBuffer);
  PHOTO_LAZY_FUNCTION(JxlDecoderSetBoxBuffer);
};
const sJxlLibrary& Jxl() {
  static const sJxlLibrary library;
  return library;
}

struct sDestroy {
  void operator()(JxlDecoder* pDecoder) const { Jxl().JxlDecoderDestroy(pDecoder); }
};

/// Walks the boxes of a file by libjxl, which reads those that Brotli compressed, too.
class cBoxReader {
 public:
  explicit cBoxReader(const std::string& pFile) : fFile(pFile), fDecoder(Jxl().JxlDecoderCreate(nullptr)) {
    Jxl().JxlDecoderSubscribeEvents(fDecoder.get(), JXL_DEC_BOX);
    fCanDecompress = Jxl().JxlDecoderSetDecompressBoxes(fDecoder.get(), JXL_TRUE) == JXL_DEC_SUCCESS;
  }

  sJxlMetadata Read() {
    Feed();
    for (;;) {
      const JxlDecoderStatus status = Jxl().JxlDecoderProcessInput(fDecoder.get());
      if (status == JXL_DEC_NEED_MORE_INPUT && Feed()) continue;
      if (status == JXL_DEC_BOX_NEED_MORE_OUTPUT && Grow()) continue;
      Finish(status == JXL_DEC_BOX || status == JXL_DEC_SUCCESS);
      if (status != JXL_DEC_BOX) return fMetadata;
      Begin();
    }
  }

 private:
  static constexpr std::size_t kPiece = 1 << 18;

  /// False where no more input helps.
  bool Feed() {
    const std::size_t left = Jxl().JxlDecoderReleaseInput(fDecoder.get());
    fInput.erase(0, fInput.size() - left);
    const std::string more = fFile.Read(fAt, kPiece);
    fAt += more.size();
    fInput += more;
    const bool isEnd = more.empty();
    // To find a file closed in the midst of a box makes libjxl write to standard error. Only a compressed box
    // needs it, to be known as whole where it is the last one.
    if (isEnd && (fIsClosed || !fIsWanted || !fIsCompressed)) return false;
    Jxl().JxlDecoderSetInput(fDecoder.get(), reinterpret_cast<const std::uint8_t*>(fInput.data()),
                             fInput.size());
    if (isEnd) Jxl().JxlDecoderCloseInput(fDecoder.get());
    fIsClosed = isEnd;
    return true;
  }

  std::string GetType(bool pIsInner) const {
    JxlBoxType type = {};
    Jxl().JxlDecoderGetBoxType(fDecoder.get(), type, pIsInner ? JXL_TRUE : JXL_FALSE);
    return {type, sizeof type};
  }

  void Begin() {
    fType = GetType(true);
    fIsCompressed = GetType(false) == "brob";
    const bool isNew = fType == "Exif" ? fMetadata.fExif.empty() : fMetadata.fXmp.empty();
    fIsWanted = IsMetadata(fType) && isNew && (fCanDecompress || !fIsCompressed);
    if (IsMetadata(fType) && !fCanDecompress && fIsCompressed) fMetadata.fHasUnread = true;
    if (fIsWanted) SetBuffer(0);
  }

  /// Makes room for more of the box; false where that is more than any picture has.
  bool Grow() {
    constexpr std::size_t kMost = 1 << 26;
    const std::size_t used = fContent.size() - Jxl().JxlDecoderReleaseBoxBuffer(fDecoder.get());
    if (used >= kMost) fContent.clear();
    if (used < kMost) SetBuffer(used);
    return used < kMost;
  }

  void SetBuffer(std::size_t pUsed) {
    fContent.resize(std::max(2 * pUsed, kPiece));
    Jxl().JxlDecoderSetBoxBuffer(fDecoder.get(), reinterpret_cast<std::uint8_t*>(fContent.data()) + pUsed,
                                 fContent.size() - pUsed);
  }

  /// Takes the box that was read last. Of one that is cut short, what is there counts, unless it is
  /// compressed.
  void Finish(bool pIsWhole) {
    if (!fIsWanted) return;
    fIsWanted = false;
    const std::size_t unused = Jxl().JxlDecoderReleaseBoxBuffer(fDecoder.get());
    fContent.resize(fContent.size() - std::min(unused, fContent.size()));
    if (!pIsWhole && (fIsCompressed || fContent.empty())) {
      fMetadata.fHasUnread = fMetadata.fHasUnread || fIsCompressed;
      return;
    }
    if (fType == "Exif") fMetadata.fExif = SkipOffset(fContent);
    if (fType == "xml ") fMetadata.fXmp = fContent;
  }

  cFileReader fFile;
  std::unique_ptr<JxlDecoder, sDestroy> fDecoder;
  bool fCanDecompress = false;
  bool fIsClosed = false;
  std::uint64_t fAt = 0;  ///< In the file.
  std::string fInput;
  std::string fType;  ///< The current box's; fContent holds its content where that is wanted.
  bool fIsCompressed = false;
  bool fIsWanted = false;
  std::string fContent;
  sJxlMetadata fMetadata;
};

/// A file in boxes, without metadata.
struct sParts {
  std::string fHead;  ///< What has to come first.
  std::string fRest;
};

sParts TakeApart(const std::string& pFile) {
  sParts parts{std::string(kSignature).append(kFileType), ""};
  if (!pFile.starts_with(kSignature)) {  // a bare codestream
    AppendBox(parts.fRest, "jxlc", "", pFile);
    return parts;
  }
  for (std::size_t at = kSignature.size(); at < pFile.size();) {
    std::string_view box = std::string_view(pFile).substr(at);
    const sBoxHeader header = ReadHeader(box.substr(0, 16));
    if (!header.fType.empty() && header.fSize < box.size()) box = box.substr(0, header.fSize);
    const bool isHead = header.fType == "jxll" && header.fSize == box.size();
    const bool isKept = !IsMetadata(header.fType) && header.fType != "ftyp";
    if (isKept) (isHead ? parts.fHead : parts.fRest) += box;
    at += box.size();
  }
  return parts;
}

}  // namespace

sJxlMetadata ReadJxlMetadata(const std::string& pFile) {
  if (cFileReader(pFile).Read(0, kSignature.size()) != kSignature) return {};
  return cBoxReader(pFile).Read();
}

void WriteJxlMetadata(const std::string& pPath, const sJxlMetadata& pMetadata) {
  if (pMetadata.fExif.empty() && pMetadata.fXmp.empty()) return;
  const sParts parts = TakeApart(ReadBytes(pPath));
  std::string metadata;
  if (!pMetadata.fExif.empty()) AppendBox(metadata, "Exif", kNoOffset, pMetadata.fExif);
  if (!pMetadata.fXmp.empty()) AppendBox(metadata, "xml ", "", pMetadata.fXmp);
  WriteBytes(pPath, parts.fHead + metadata + parts.fRest);
}

}  // namespace Photo
