#pragma once

#include <string>

namespace Photo {

/// An empty file beside a target, which takes the target's place in one step. Until then the target stays as
/// it is, and an exception removes the file. Signal handlers learn its path by TakeUnfinishedFile.
///
/// Its name follows from the target's (".quorvane-" and a hash), and it is locked as long as its process
/// lives. So a file that a killed process left behind is taken over by the next one that writes the same
/// target.
///
/// For a stream, the file lies in memory, and is copied there in one go.
class cTempFile {
 public:
  static constexpr int kNoStream = -1;

  /// pMayReplace: whether a target that exists by then is replaced. Throws cFailure when the place cannot be
  /// written to.
  explicit cTempFile(const std::string& pTarget, bool pMayReplace = true);
  /// pStream: an open handle to write to, which stays the caller's. Throws cFailure.
  explicit cTempFile(int pStream);
  cTempFile(const cTempFile&) = delete;
  cTempFile& operator=(const cTempFile&) = delete;
  ~cTempFile();

  const std::string& GetPath() const { return fPath; }
  void Commit();  ///< The file becomes the target. Throws cFailure.

  /// Throws the cFailure for what could not be written into the file. Those who write rarely say why: where
  /// the system takes no more bytes, its reason is given in place of pReason.
  [[noreturn]] void Refuse(const std::string& pReason) const;

  /// Removes what ended processes left behind for the target.
  static void RemoveLeftovers(const std::string& pTarget);

 private:
  void OpenBesideTarget();
  void OpenInMemory();
  void CopyToStream();
  bool IsForStream() const { return fStream != kNoStream; }
  int FindError() const;
  void TakePlace();

  bool fMayReplace = false;
  int fStream = kNoStream;
  std::string fPlace;  ///< Where that leads: a symbolic link is followed, not replaced. Empty for a stream.
  std::string fPath;   ///< Empty once there is nothing to remove.
  int fHandle = -1;    ///< Holds the lock.
};

/// The file for pTarget, or for pStream where that is given.
cTempFile OpenTarget(const std::string& pTarget, bool pMayReplace, int pStream);

/// Throws the cFailure for a target that exists already, unless it may be replaced or is not given.
void CheckReplacing(const std::string& pTarget, bool pMayReplace);

/// Throws the cFailure for a target that exists already. pMore: what else there is to do about it.
[[noreturn]] void RefuseExisting(const std::string& pMore = "");

}  // namespace Photo
