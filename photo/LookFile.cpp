#include "photo/LookFile.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "photo/SettingsJson.h"
#include "photo/base/Failure.h"
#include "photo/io/FileBytes.h"
#include "photo/io/TempFile.h"

namespace Photo {
namespace {

namespace fs = std::filesystem;

/// Opening anything but a file might wait for ever.
void CheckIsFile(const std::string& pFile) {
  std::error_code error;
  const fs::file_status status = fs::status(pFile, error);
  if (error) throw cFailure(eFailure::kCannotRead, error.message());
  if (fs::is_regular_file(status)) return;
  throw cFailure(eFailure::kCannotRead,
                 "is not a regular file; a look is taken from a stored picture or look");
}

/// No picture begins with a brace.
bool BeginsAsJson(std::istream& pStream) {
  return (pStream >> std::ws).peek() == '{';
}

std::optional<sSettings> Load(const std::string& pFile) {
  constexpr std::uintmax_t kLargest = 1 << 20;
  CheckIsFile(pFile);
  std::ifstream stream(pFile, std::ios::binary);
  if (!stream) throw cFailure(eFailure::kCannotRead, std::strerror(errno));
  std::error_code error;
  const bool isSmall = fs::file_size(pFile, error) <= kLargest && !error;
  if (!isSmall || !BeginsAsJson(stream)) return std::nullopt;
  const std::string text{std::istreambuf_iterator<char>(stream), {}};
  if (stream.bad()) throw cFailure(eFailure::kCannotRead, std::strerror(errno));
  return ParseLook(text);
}

}  // namespace

std::optional<sSettings> LoadLook(const std::string& pFile) {
  return NameFile(pFile, [&] { return Load(pFile); });
}

void SaveLook(const std::string& pFile, const sSettings& pSettings, bool pMayReplace) {
  NameFile(pFile, [&] {
    cTempFile file(pFile, pMayReplace);
    try {
      WriteBytes(file.GetPath(), LookToJson(pSettings));
    } catch (const std::runtime_error& error) {
      file.Refuse(error.what());
    }
    file.Commit();
  });
}

}  // namespace Photo
