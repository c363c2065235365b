#include "cli/RestartedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>

namespace Cli {
namespace {

/// Where libvips is in what it takes for a file.
struct sRestarted {
  int fHandle;
  std::string fStart;
  gint64 fSkip;
  gint64 fPosition = 0;

  sRestarted(const std::string& pFile, std::size_t pSkip, const std::string& pStart)
      : fHandle(open(pFile.c_str(), O_RDONLY | O_CLOEXEC)),
        fStart(pStart),
        fSkip(static_cast<gint64>(pSkip)) {}
  sRestarted(const sRestarted&) = delete;
  sRestarted& operator=(const sRestarted&) = delete;
  ~sRestarted() {
    if (fHandle >= 0) close(fHandle);
  }
  gint64 GetStartSize() const { return static_cast<gint64>(fStart.size()); }
};

gint64 Read(VipsSourceCustom*, void* pTo, gint64 pCount, sRestarted* pFile) {
  gint64 count = 0;
  if (pFile->fPosition < pFile->GetStartSize()) {
    count = std::min(pCount, pFile->GetStartSize() - pFile->fPosition);
    std::copy_n(pFile->fStart.data() + pFile->fPosition, count, static_cast<char*>(pTo));
  } else {
    const gint64 at = pFile->fPosition - pFile->GetStartSize() + pFile->fSkip;
    do {
      count = pread(pFile->fHandle, pTo, static_cast<std::size_t>(pCount), at);
    } while (count < 0 && errno == EINTR);
  }
  if (count > 0) pFile->fPosition += count;
  return count;
}

gint64 Seek(VipsSourceCustom*, gint64 pOffset, int pWhence, sRestarted* pFile) {
  gint64 base = 0;
  if (pWhence == SEEK_CUR) base = pFile->fPosition;
  if (pWhence == SEEK_END) {
    struct stat facts = {};
    if (fstat(pFile->fHandle, &facts) != 0) return -1;
    base = facts.st_size - pFile->fSkip + pFile->GetStartSize();
  }
  if (base + pOffset < 0) return -1;
  return pFile->fPosition = base + pOffset;
}

void Free(gpointer pFile, GClosure*) {
  delete static_cast<sRestarted*>(pFile);
}

}  // namespace

vips::VSource OpenRestarted(const std::string& pFile, std::size_t pSkip, const std::string& pStart) {
  auto file = std::make_unique<sRestarted>(pFile, pSkip, pStart);
  if (file->fHandle < 0) throw vips::VError();
  VipsSourceCustom* const source = vips_source_custom_new();
  if (source == nullptr) throw vips::VError();
  vips::VSource result(VIPS_SOURCE(source));
  sRestarted* const state = file.release();  // lives as long as the source
  g_signal_connect(source, "seek", G_CALLBACK(Seek), state);
  g_signal_connect_data(source, "read", G_CALLBACK(Read), state, Free, GConnectFlags(0));
  return result;
}

}  // namespace Cli
