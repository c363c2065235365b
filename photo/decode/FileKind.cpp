#include "photo/decode/FileKind.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "photo/base/Failure.h"

namespace Photo {
namespace {

/// The first bytes of the file. Throws cFailure, in plain words, for what cannot be read as a file.
std::string ReadStart(const std::string& pFile) {
  std::error_code error;
  if (std::filesystem::is_directory(pFile, error)) {
    throw cFailure(eFailure::kCannotRead, "is a folder; give the name of a picture in it");
  }
  if (std::filesystem::exists(pFile, error) && !std::filesystem::is_regular_file(pFile, error)) {
    throw cFailure(eFailure::kCannotRead, "is not a regular file; store the picture in one first");
  }
  errno = 0;
  std::ifstream stream(pFile, std::ios::binary);
  if (!stream) throw cFailure(eFailure::kCannotRead, std::strerror(errno));
  std::string start(4, '\0');
  stream.read(start.data(), 4);
  start.resize(static_cast<std::size_t>(stream.gcount()));
  if (start.empty()) throw cFailure(eFailure::kCannotRead, "is empty");
  return start;
}

}  // namespace

eFileKind DetectFileKind(const std::string& pFile) {
  const std::string start = ReadStart(pFile);
  if (start == "\x76\x2f\x31\x01") return eFileKind::kExr;
  if (start.starts_with("PF") || start.starts_with("Pf")) return eFileKind::kPfm;
  return eFileKind::kVips;
}

}  // namespace Photo
