#include "photo/io/AmendedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>

namespace Photo {
namespace {

/// Where libvips is in what it takes for a file.
struct sAmendedFile {
  int fHandle;
  sAmendment fAmendment;
  gint64 fPosition = 0;

  sAmendedFile(const std::string& pFile, const sAmendment& pAmendment)
      : fHandle(open(pFile.c_str(), O_RDONLY | O_CLOEXEC)), fAmendment(pAmendment) {}
  sAmendedFile(const sAmendedFile&) = delete;
  sAmendedFile& operator=(const sAmendedFile&) = delete;
  ~sAmendedFile() {
    if (fHandle >= 0) close(fHandle);
  }
  gint64 GetNewLength() const { return static_cast<gint64>(fAmendment.fBytes.size()); }
  /// How far what comes after the replaced bytes lies further on in the file than here.
  gint64 GetShift() const { return fAmendment.fLength - GetNewLength(); }
};

gint64 ReadFile(int pHandle, void* pTo, gint64 pCount, gint64 pAt) {
  gint64 count = 0;
  do {
    count = pread(pHandle, pTo, static_cast<std::size_t>(pCount), pAt);
  } while (count < 0 && errno == EINTR);
  return count;
}

/// No more than what comes before, in, or after the replaced bytes.
gint64 ReadPiece(sAmendedFile* pFile, char* pTo, gint64 pCount) {
  const gint64 inside = pFile->fPosition - pFile->fAmendment.fAt;
  gint64 count = 0;
  if (inside < 0) {
    count = ReadFile(pFile->fHandle, pTo, std::min(pCount, -inside), pFile->fPosition);
  } else if (inside < pFile->GetNewLength()) {
    count = std::min(pCount, pFile->GetNewLength() - inside);
    std::copy_n(pFile->fAmendment.fBytes.data() + inside, count, pTo);
  } else {
    count = ReadFile(pFile->fHandle, pTo, pCount, pFile->fPosition + pFile->GetShift());
  }
  if (count > 0) pFile->fPosition += count;
  return count;
}

/// All that was asked for, up to the end of the file: some loaders take less for it.
gint64 Read(VipsSourceCustom*, void* pTo, gint64 pCount, sAmendedFile* pFile) {
  gint64 done = 0;
  while (done < pCount) {
    const gint64 count = ReadPiece(pFile, static_cast<char*>(pTo) + done, pCount - done);
    if (count < 0) return -1;
    if (count == 0) break;
    done += count;
  }
  return done;
}

gint64 Seek(VipsSourceCustom*, gint64 pOffset, int pWhence, sAmendedFile* pFile) {
  gint64 base = 0;
  if (pWhence == SEEK_CUR) base = pFile->fPosition;
  if (pWhence == SEEK_END) {
    struct stat facts = {};
    if (fstat(pFile->fHandle, &facts) != 0) return -1;
    base = facts.st_size - pFile->GetShift();
  }
  gint64 position = 0;
  if (__builtin_add_overflow(base, pOffset, &position) || position < 0) return -1;
  return pFile->fPosition = position;
}

void Free(gpointer pFile, GClosure*) {
  delete static_cast<sAmendedFile*>(pFile);
}

}  // namespace

vips::VSource OpenAmended(const std::string& pFile, const sAmendment& pAmendment) {
  auto file = std::make_unique<sAmendedFile>(pFile, pAmendment);
  if (file->fHandle < 0) throw vips::VError();
  VipsSourceCustom* const source = vips_source_custom_new();
  if (source == nullptr) throw vips::VError();
  vips::VSource result(VIPS_SOURCE(source));
  sAmendedFile* const state = file.release();  // lives as long as the source
  g_signal_connect(source, "seek", G_CALLBACK(Seek), state);
  g_signal_connect_data(source, "read", G_CALLBACK(Read), state, Free, GConnectFlags(0));
  return result;
}

}  // namespace Photo
