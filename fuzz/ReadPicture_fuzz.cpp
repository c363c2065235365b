// The tool's readers. Built once for each format: the input is a file of FUZZ_FORMAT, and is read as
// 'tonemap' and 'equalize' read it, and written back. What they cannot read they refuse with a cFailure.

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <string_view>

#include "cli/batch/VipsSession.h"
#include "fuzz/MemoryFile.h"
#include "photo/base/Failure.h"
#include "photo/decode/LdrReader.h"
#include "photo/decode/PictureReader.h"
#include "photo/encode/PictureWriter.h"
#include "photo/io/TempFile.h"
#include "photo/picture/Alpha.h"

namespace {

using namespace std::string_view_literals;

enum eFormat { kHdr, kExr, kTiff, kPng, kJpeg, kPfm, kWebp, kHeif, kJxl };

/// Files of other formats belong to other fuzz targets.
bool IsOfFormat(eFormat pFormat, std::string_view pFile) {
  const struct {
    std::size_t fAt;
    std::string_view fMagic, fOther;
  } formats[] = {{0, "#?", "#?"},
                 {0, "\x76\x2f\x31\x01", "\x76\x2f\x31\x01"},
                 {0, "II", "MM"},
                 {0, "\x89PNG\r\n\x1a\n", "\x89PNG\r\n\x1a\n"},
                 {0, "\xff\xd8\xff", "\xff\xd8\xff"},
                 {0, "PF", "Pf"},
                 {8, "WEBP", "WEBP"},
                 {4, "ftyp", "ftyp"},
                 {0, "\xff\x0a", "\0\0\0\x0cJXL "sv}};
  const auto& [at, magic, other] = formats[pFormat];
  const std::string_view file = pFile.substr(std::min(at, pFile.size()));
  return file.starts_with(magic) || file.starts_with(other);
}

/// Whether 'equalize' takes such files.
bool IsOfIntegers(eFormat pFormat) {
  return pFormat != kHdr && pFormat != kExr && pFormat != kPfm;
}

/// The file extension of a result of the format; PNG for formats of 16 bits and those that are slow to write.
const char* EndingOf(eFormat pFormat, int pDepth) {
  if (pFormat == kTiff) return ".tif";
  if (pFormat == kWebp) return ".webp";
  return pFormat == kJpeg && pDepth == 8 ? ".jpg" : ".png";
}

void CheckIsFinite(const Photo::sPicture& pPicture) {
  for (int y = 0; y < pPicture.fBitmap->GetHeight(); ++y) {
    const float* const row = Photo::GetRow(pPicture, y);
    Require(
        std::all_of(row, row + 3 * pPicture.fBitmap->GetWidth(), [](float pV) { return std::isfinite(pV); }),
        "every sample is finite");
  }
}

/// Writes it as 'equalize' does, if possible in the format that it was read from: nothing in its metadata may
/// prevent that.
void WriteBack(Photo::sLdrPicture& pPicture) {
  const int depth = pPicture.fBitmap->GetBitDepth();
  const std::string target = "/tmp/quorvane-fuzz-" + std::to_string(getpid()) + EndingOf(FUZZ_FORMAT, depth);
  Photo::cTempFile file(target);
  Photo::sFinishedPicture finished{Photo::cResultPixels(*pPicture.fBitmap), pPicture.fAlpha,
                                   pPicture.fProfile, pPicture.fMetadata, ""};
  Photo::WritePicture(finished, Photo::ChooseOutputFormat(target, depth), {}, file);
  std::filesystem::remove(target);
}

template <class tRead>
void Try(const tRead& pRead) {
  try {
    pRead();
  } catch (const Photo::cFailure& failure) {
    Require(failure.GetKind() == Photo::eFailure::kCannotRead, "a reader's failures say so");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t pSize) {
  static const Tool::cVipsSession library;
  const std::string_view content(reinterpret_cast<const char*>(pBytes), pSize);
  if (!IsOfFormat(FUZZ_FORMAT, content)) return 0;
  const cMemoryFile file(content);
  const int page = IsOfIntegers(FUZZ_FORMAT) ? pBytes[pSize - 1] & 3 : 0;
  const Photo::sPictureChoice choice{.fPage = page, .fTakesSingle = true};
  Try([&] {
    Photo::sPicture picture = Photo::ReadPicture(file.Name(), choice);
    CheckIsFinite(picture);
    Photo::SettleAlpha(picture);
    CheckIsFinite(picture);
  });
  if (!IsOfIntegers(FUZZ_FORMAT)) return 0;
  Try([&] {
    Photo::sLdrPicture picture = Photo::ReadLdrPicture(file.Name(), "equalize", choice);
    WriteBack(picture);
  });
  return 0;
}
