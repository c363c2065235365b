#include "cli/batch/NameList.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>

#include "cli/batch/StandardStreams.h"
#include "photo/base/Failure.h"

namespace Tool {
namespace {

constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
constexpr std::size_t kLargest = std::size_t{1} << 30;

void RefuseNul(const std::string& pFile, std::string_view pText) {
  if (pText.find('\0') == std::string_view::npos) return;
  throw Photo::cFailure(
      Photo::eFailure::kUsage, pFile,
      "holds NUL bytes, and names in it end with their lines; -0 takes names that end with NUL");
}

/// All that pHandle gives. A list that cannot be used is given up at once: it need not have an end.
std::string ReadAll(const std::string& pFile, int pHandle, bool pNulSeparated) {
  std::string text;
  std::string block(std::size_t{1} << 16, '\0');
  for (;;) {
    const ssize_t size = read(pHandle, block.data(), block.size());
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) throw Photo::cFailure(Photo::eFailure::kCannotRead, pFile, std::strerror(errno));
    if (size == 0) return text;
    const std::string_view bytes(block.data(), static_cast<std::size_t>(size));
    if (!pNulSeparated) RefuseNul(pFile, bytes);
    text += bytes;
    if (text.size() > kLargest)
      throw Photo::cFailure(Photo::eFailure::kCannotRead, pFile, "is too long for a list of names");
  }
}

}  // namespace

std::vector<std::string> ParseNames(const std::string& pFile, const std::string& pText, bool pNulSeparated) {
  std::string_view rest = pText;
  if (!pNulSeparated) RefuseNul(pFile, rest);
  if (!pNulSeparated && rest.starts_with(kByteOrderMark)) rest.remove_prefix(kByteOrderMark.size());
  std::vector<std::string> names;
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find(pNulSeparated ? '\0' : '\n'), rest.size());
    std::string_view name = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (!pNulSeparated && name.ends_with('\r')) name.remove_suffix(1);
    if (!name.empty()) names.emplace_back(name);
  }
  return names;
}

std::vector<std::string> ReadNames(const std::string& pFile, bool pNulSeparated) {
  const bool isStandardInput = pFile == kStandardStream;
  const std::string shown = isStandardInput ? "standard input" : pFile;
  const int handle = isStandardInput ? STDIN_FILENO : open(pFile.c_str(), O_RDONLY | O_CLOEXEC);
  if (handle < 0) throw Photo::cFailure(Photo::eFailure::kCannotRead, pFile, std::strerror(errno));
  struct sCloser {
    int fHandle;
    ~sCloser() {
      if (fHandle != STDIN_FILENO) close(fHandle);
    }
  } const closer{handle};
  return ParseNames(shown, ReadAll(shown, handle, pNulSeparated), pNulSeparated);
}

}  // namespace Tool
