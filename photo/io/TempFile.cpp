#include "photo/io/TempFile.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

#include "photo/base/Failure.h"
#include "photo/io/StreamCopy.h"
#include "photo/io/UnfinishedFile.h"

namespace Photo {
namespace {

/// How many may write one target at the same time and still be cleaned up after.
constexpr int kSlots = 4;

/// The rights that the target has, or that a new file gets.
mode_t GetTargetMode(const std::string& pPlace) {
  struct stat status = {};
  if (stat(pPlace.c_str(), &status) == 0) return status.st_mode & 0777;
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

std::string FollowLink(const std::string& pTarget) {
  std::error_code error;
  if (!std::filesystem::is_symlink(pTarget, error)) return pTarget;
  const std::filesystem::path place = std::filesystem::weakly_canonical(pTarget, error);
  return error ? pTarget : place.string();
}

/// Refuses what must not, or cannot, be replaced.
void CheckTarget(const std::string& pPlace, const std::string& pFolder) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(pPlace, error);
  if (std::filesystem::is_directory(status)) {
    throw cFailure(eFailure::kCannotWrite, "is a folder; give the name of a file in it");
  }
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    throw cFailure(eFailure::kCannotWrite, "is not a regular file");
  }
  if (std::filesystem::exists(status) && access(pPlace.c_str(), W_OK) != 0) {
    throw cFailure(eFailure::kCannotWrite, "is write-protected; give another name");
  }
  if (!std::filesystem::exists(pFolder, error)) {
    throw cFailure(eFailure::kCannotWrite, "the folder " + pFolder + " does not exist; create it first");
  }
}

std::string FolderOf(const std::string& pPlace) {
  const std::string parent = std::filesystem::path(pPlace).parent_path().string();
  return parent.empty() ? "." : parent;
}

/// The name depends on the target's alone (FNV-1a), and is never too long.
std::string NameSlot(const std::string& pPlace, int pSlot) {
  std::uint64_t hash = 0xcbf29ce484222325u;
  for (const char letter : std::filesystem::path(pPlace).filename().string()) {
    hash = (hash ^ static_cast<unsigned char>(letter)) * 0x100000001b3u;
  }
  return fmt::format("{}/.quorvane-{:016x}-{}", FolderOf(pPlace), hash, pSlot);
}

/// Whether the open file is what the name leads to, and no one else's.
bool IsOwnFile(int pHandle, const std::string& pPath) {
  struct stat open = {};
  struct stat named = {};
  return fstat(pHandle, &open) == 0 && lstat(pPath.c_str(), &named) == 0 && S_ISREG(named.st_mode) &&
         open.st_ino == named.st_ino && open.st_dev == named.st_dev && open.st_uid == geteuid() &&
         open.st_nlink == 1;
}

/// Opens and locks the file. Returns -1 where a living process has it, or it cannot be opened.
int Claim(const std::string& pPath, int pFlags) {
  const int handle = open(pPath.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | pFlags, 0600);
  if (handle < 0) return -1;
  const bool isLocked = flock(handle, LOCK_EX | LOCK_NB) == 0;
  if (isLocked && IsOwnFile(handle, pPath)) return handle;
  if (!isLocked && errno != EWOULDBLOCK && pFlags != 0) unlink(pPath.c_str());  // nothing can be locked there
  close(handle);
  return -1;
}

}  // namespace

void RefuseExisting(const std::string& pMore) {
  throw cFailure(eFailure::kCannotWrite, "exists already; {overwrite} replaces it" + pMore);
}

void CheckReplacing(const std::string& pTarget, bool pMayReplace) {
  std::error_code error;
  if (!pMayReplace && std::filesystem::is_regular_file(pTarget, error)) RefuseExisting();
}

cTempFile::cTempFile(const std::string& pTarget, bool pMayReplace)
    : fMayReplace(pMayReplace), fPlace(FollowLink(pTarget)) {
  CheckTarget(fPlace, FolderOf(fPlace));
  OpenBesideTarget();
  RemoveLeftovers(pTarget);
}

cTempFile::cTempFile(int pStream) : fStream(pStream) {
  OpenInMemory();
}

void cTempFile::OpenInMemory() {
  fHandle = memfd_create("result", MFD_CLOEXEC);
  if (fHandle < 0) throw cFailure(eFailure::kCannotWrite, std::strerror(errno));
  fPath = "/proc/self/fd/" + std::to_string(fHandle);
}

void cTempFile::OpenBesideTarget() {
  // A signal between the file's creation and its note would leave it behind.
  cUnfinishedChange change;
  for (int slot = 0; slot < kSlots && fHandle < 0; ++slot) {
    fPath = NameSlot(fPlace, slot);
    fHandle = fPath.size() < PATH_MAX ? Claim(fPath, O_CREAT) : -1;
  }
  if (fHandle < 0) {  // all in use, or of no use there
    fPath = FolderOf(fPlace) + "/.quorvane-XXXXXX";
    fHandle = fPath.size() < PATH_MAX ? mkostemp(fPath.data(), O_CLOEXEC) : (errno = ENAMETOOLONG, -1);
  }
  if (fHandle < 0) {
    throw cFailure(eFailure::kCannotWrite,
                   "cannot write into the folder " + FolderOf(fPlace) + " (" + std::strerror(errno) + ")");
  }
  [[maybe_unused]] const bool isEmptied = ftruncate(fHandle, 0) == 0;
  fchmod(fHandle, GetTargetMode(fPlace));
  change.Note(fPath);
}

cTempFile::~cTempFile() {
  if (!IsForStream() && !fPath.empty()) {
    cUnfinishedChange change;
    unlink(fPath.c_str());
    change.Forget(fPath);
  }
  close(fHandle);  // gives up the lock last: nobody else takes the name over before
}

void cTempFile::Commit() {
  if (IsForStream()) return CopyToStream();
  cUnfinishedChange change;
  TakePlace();
  change.Forget(fPath);
  fPath.clear();
}

/// What keeps the file from growing: ENOSPC, EFBIG, EDQUOT; 0 for nothing.
int cTempFile::FindError() const {
  const std::vector<char> block(std::size_t{1} << 16);
  struct stat status = {};
  if (fstat(fHandle, &status) != 0) return errno;
  for (std::size_t done = 0; done < block.size();) {
    const off_t at = status.st_size + static_cast<off_t>(done);
    const ssize_t written = pwrite(fHandle, block.data(), block.size() - done, at);
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    done += static_cast<std::size_t>(written);
  }
  return 0;
}

void cTempFile::Refuse(const std::string& pReason) const {
  const int error = FindError();
  throw cFailure(eFailure::kCannotWrite,
                 "writing failed (" + (error != 0 ? std::strerror(error) : pReason) + ")");
}

void cTempFile::CopyToStream() {
  const int file = open(fPath.c_str(), O_RDONLY | O_CLOEXEC);
  const bool isCopied = file >= 0 && CopyStream(file, fStream);
  const int error = errno;
  close(file);
  if (!isCopied) throw cFailure(eFailure::kCannotWrite, std::strerror(error));
}

void cTempFile::TakePlace() {
  const char* const from = fPath.c_str();
  const char* const to = fPlace.c_str();
  if (!fMayReplace) {
    if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return;
    const bool isUnknown = errno == EINVAL || errno == ENOSYS;  // to this kind of file system
    if (errno == EEXIST || (isUnknown && access(to, F_OK) == 0)) RefuseExisting();
  }
  if (std::rename(from, to) != 0) throw cFailure(eFailure::kCannotWrite, std::strerror(errno));
}

void cTempFile::RemoveLeftovers(const std::string& pTarget) {
  const std::string place = FollowLink(pTarget);
  for (int slot = 0; slot < kSlots; ++slot) {
    const std::string path = NameSlot(place, slot);
    const int handle = Claim(path, 0);
    if (handle < 0) continue;
    unlink(path.c_str());
    close(handle);
  }
}

cTempFile OpenTarget(const std::string& pTarget, bool pMayReplace, int pStream) {
  return pStream == cTempFile::kNoStream ? cTempFile(pTarget, pMayReplace) : cTempFile(pStream);
}

}  // namespace Photo
