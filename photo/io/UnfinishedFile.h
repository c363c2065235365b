#pragma once

#include <csignal>
#include <string>

namespace Photo {

/// The path of the temporary file that this process has not finished, "" for none. For a signal handler that
/// is about to end the process, in whichever thread it runs: no file is created, renamed or removed by other
/// threads from then on, so that what it unlinks is that file and no other. To be called once.
const char* TakeUnfinishedFile() noexcept;

/// While it lives, a temporary file and its noted path change together: signals are held back from this
/// thread, and handlers in other threads wait.
class cUnfinishedChange {
 public:
  cUnfinishedChange() noexcept;
  cUnfinishedChange(const cUnfinishedChange&) = delete;
  cUnfinishedChange& operator=(const cUnfinishedChange&) = delete;
  ~cUnfinishedChange();

  /// One path is noted at a time: of several files, the last one.
  void Note(const std::string& pPath) noexcept;
  /// Does nothing where another path is noted.
  void Forget(const std::string& pPath) noexcept;

 private:
  sigset_t fFormer;
};

}  // namespace Photo
