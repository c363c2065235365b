#include "photo/metadata/MetadataHead.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "photo/io/BigEndian.h"

namespace Photo {
namespace {

constexpr std::string_view kPngStart("\x89PNG\r\n\x1a\n", 8);
constexpr std::string_view kPngEnd("\0\0\0\0IEND\xae\x42\x60\x82", 12);
constexpr std::string_view kJpegStart("\xff\xd8", 2);
constexpr std::string_view kJpegEnd("\xff\xd9", 2);

/// An open file. Errors are thrown with the system's text.
class cOpenFile {
 public:
  cOpenFile(const std::string& pPath, int pFlags) : fHandle(open(pPath.c_str(), pFlags | O_CLOEXEC)) {
    Check(fHandle >= 0);
  }
  cOpenFile(const cOpenFile&) = delete;
  cOpenFile& operator=(const cOpenFile&) = delete;
  ~cOpenFile() { close(fHandle); }

  std::int64_t GetSize() const {
    const off_t size = lseek(fHandle, 0, SEEK_END);
    Check(size >= 0);
    return size;
  }
  void Resize(std::int64_t pSize) const { Check(ftruncate(fHandle, pSize) == 0); }

  /// Fewer bytes than asked for only where the file ends.
  std::size_t Read(char* pTo, std::size_t pSize, std::int64_t pAt) const {
    std::size_t done = 0;
    while (done < pSize) {
      const ssize_t count = pread(fHandle, pTo + done, pSize - done, pAt + static_cast<std::int64_t>(done));
      if (count < 0 && errno == EINTR) continue;
      Check(count >= 0);
      if (count == 0) break;
      done += static_cast<std::size_t>(count);
    }
    return done;
  }
  std::string Read(std::size_t pSize, std::int64_t pAt) const {
    std::string bytes(pSize, '\0');
    bytes.resize(Read(bytes.data(), pSize, pAt));
    return bytes;
  }
  void Write(const char* pFrom, std::size_t pSize, std::int64_t pAt) const {
    while (pSize > 0) {
      const ssize_t count = pwrite(fHandle, pFrom, pSize, pAt);
      if (count < 0 && errno == EINTR) continue;
      Check(count > 0);
      pFrom += count;
      pSize -= static_cast<std::size_t>(count);
      pAt += count;
    }
  }

 private:
  static void Check(bool pIsDone) {
    if (!pIsDone) throw std::runtime_error(std::strerror(errno));
  }

  int fHandle;
};

/// Offset of the first chunk of pixels; -1 for none.
std::int64_t FindPngPixels(const cOpenFile& pFile) {
  std::int64_t at = static_cast<std::int64_t>(kPngStart.size());
  for (;;) {
    const std::string chunk = pFile.Read(8, at);
    if (chunk.size() < 8) return -1;
    if (chunk.substr(4) == "IDAT") return at;
    at += 12 + static_cast<std::int64_t>(ReadBigEndian(chunk.substr(0, 4)));
  }
}

/// Offset of the first scan; -1 for none.
std::int64_t FindJpegPixels(const cOpenFile& pFile) {
  std::int64_t at = static_cast<std::int64_t>(kJpegStart.size());
  for (;;) {
    const std::string segment = pFile.Read(4, at);
    const bool isSegment =
        segment.size() == 4 && segment[0] == '\xff' && segment[1] >= '\xc0' && segment[1] <= '\xfe';
    if (!isSegment) return -1;
    if (segment[1] == '\xda') return at;
    at += 2 + static_cast<std::int64_t>(ReadBigEndian(segment.substr(2)));
  }
}

/// Moves the bytes from pFrom to pEnd to pTo. The ranges may overlap: what would be overwritten moves first.
void MoveRest(const cOpenFile& pFile, std::int64_t pFrom, std::int64_t pEnd, std::int64_t pTo) {
  constexpr std::int64_t kBlock = 1 << 18;
  std::vector<char> block(kBlock);
  for (std::int64_t done = 0; done < pEnd - pFrom;) {
    const std::int64_t count = std::min(kBlock, pEnd - pFrom - done);
    const std::int64_t offset = pTo > pFrom ? pEnd - pFrom - done - count : done;
    const std::size_t read = pFile.Read(block.data(), static_cast<std::size_t>(count), pFrom + offset);
    pFile.Write(block.data(), read, pTo + offset);
    done += count;
  }
}

}  // namespace

sMetadataHead ReadMetadataHead(const std::string& pPath) {
  const cOpenFile file(pPath, O_RDONLY);
  const std::string start = file.Read(kPngStart.size(), 0);
  sMetadataHead head;
  head.fPixels = -1;
  if (start == kPngStart) {
    head.fPixels = FindPngPixels(file);
    head.fEnd = kPngEnd;
  } else if (start.starts_with(kJpegStart)) {
    head.fPixels = FindJpegPixels(file);
    head.fEnd = kJpegEnd;
  }
  if (head.fPixels < 0) head = {"", "", file.GetSize()};
  head.fFile = file.Read(static_cast<std::size_t>(head.fPixels), 0) + head.fEnd;
  return head;
}

void ReplaceMetadataHead(const std::string& pPath, const sMetadataHead& pOld, const std::string& pNew) {
  if (!pNew.ends_with(pOld.fEnd)) throw std::runtime_error("its metadata do not end where its pixels begin");
  const cOpenFile file(pPath, O_RDWR);
  const std::size_t size = pNew.size() - pOld.fEnd.size();
  const auto pixels = static_cast<std::int64_t>(size);
  const std::int64_t end = file.GetSize();
  if (pixels != pOld.fPixels) MoveRest(file, pOld.fPixels, end, pixels);
  file.Write(pNew.data(), size, 0);
  file.Resize(pixels + end - pOld.fPixels);
}

}  // namespace Photo
