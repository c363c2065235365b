// The boxes of JPEG XL files: metadata are searched in any file, and replaced by others, which are found
// again; a bare codestream stays as it was.

#include "photo/metadata/JxlContainer.h"

#include "fuzz/MemoryFile.h"
#include "photo/io/FileBytes.h"

namespace {

bool IsBare(std::string_view pFile) {
  return pFile.size() < 4 || pFile.substr(0, 4) != std::string_view("\0\0\0\x0c", 4);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t pSize) {
  const std::string content(reinterpret_cast<const char*>(pBytes), pSize);
  const cMemoryFile file(content);
  constexpr std::size_t kMost = 1 << 28;  // Brotli makes much of little
  const Photo::sJxlMetadata found = Photo::ReadJxlMetadata(file.Name());
  Require(found.fExif.size() + found.fXmp.size() <= kMost, "what is found has a bound");

  const Photo::sJxlMetadata given{{"II*\0", 4}, "<x:xmpmeta/>", false};
  Photo::WriteJxlMetadata(file.Name(), given);
  const Photo::sJxlMetadata again = Photo::ReadJxlMetadata(file.Name());
  Require(again.fExif == given.fExif && again.fXmp == given.fXmp, "what was put in is found");
  if (IsBare(content)) Require(Photo::ReadBytes(file.Name()).ends_with(content), "the codestream stays");
  return 0;
}
