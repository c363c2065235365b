#include "cli/TempFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "cli/Failure.h"

namespace Cli {
namespace {

constexpr int kEndSignals[] = {SIGINT, SIGTERM, SIGHUP};

/// What the signal handler removes; empty for nothing. Changed only while the signals are held back.
char gPathToRemove[PATH_MAX];

extern "C" void RemoveAndEnd(int pSignal) {
  if (gPathToRemove[0] != '\0') unlink(gPathToRemove);
  raise(pSignal);  // the default action stands again (SA_RESETHAND) and follows as this handler returns
}

void CatchEndSignals() {
  struct sigaction action = {};
  action.sa_handler = RemoveAndEnd;
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  for (const int signal : kEndSignals) {
    struct sigaction present = {};
    sigaction(signal, nullptr, &present);
    if (present.sa_handler == SIG_DFL) sigaction(signal, &action, nullptr);  // an ignored one stays ignored
  }
  std::signal(SIGXFSZ, SIG_IGN);  // a file size limit becomes a failed write, which is reported
}

/// Holds the signals back, so that the file and the note of its name change together.
class cSignalHold {
 public:
  cSignalHold() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : kEndSignals) sigaddset(&set, signal);
    pthread_sigmask(SIG_BLOCK, &set, &fFormer);
  }
  cSignalHold(const cSignalHold&) = delete;
  cSignalHold& operator=(const cSignalHold&) = delete;
  ~cSignalHold() { pthread_sigmask(SIG_SETMASK, &fFormer, nullptr); }

 private:
  sigset_t fFormer;
};

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
void CheckTarget(const std::string& pTarget, const std::string& pPlace, const std::string& pFolder) {
  std::error_code error;
  const std::filesystem::file_status status = std::filesystem::status(pPlace, error);
  if (std::filesystem::is_directory(status)) {
    throw cFailure(eExitCode_CannotWrite, pTarget, "is a folder; give the name of a file in it");
  }
  if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status)) {
    throw cFailure(eExitCode_CannotWrite, pTarget, "is not a regular file");
  }
  if (std::filesystem::exists(status) && access(pPlace.c_str(), W_OK) != 0) {
    throw cFailure(eExitCode_CannotWrite, pTarget, "is write-protected; give another name");
  }
  if (!std::filesystem::exists(pFolder, error)) {
    throw cFailure(eExitCode_CannotWrite, pTarget,
                   "the folder " + pFolder + " does not exist; create it first");
  }
}

}  // namespace

cTempFile::cTempFile(const std::string& pTarget) : fTarget(pTarget), fPlace(FollowLink(pTarget)) {
  const std::string parent = std::filesystem::path(fPlace).parent_path().string();
  const std::string folder = parent.empty() ? "." : parent;
  CheckTarget(fTarget, fPlace, folder);
  CatchEndSignals();
  std::string path = folder + "/.quorvane-XXXXXX";
  const cSignalHold hold;
  const int file = path.size() < PATH_MAX ? mkostemp(path.data(), O_CLOEXEC) : (errno = ENAMETOOLONG, -1);
  if (file < 0) {
    throw cFailure(eExitCode_CannotWrite, pTarget,
                   "cannot write into the folder " + folder + " (" + std::strerror(errno) + ")");
  }
  fchmod(file, GetTargetMode(fPlace));
  close(file);
  std::memcpy(gPathToRemove, path.c_str(), path.size() + 1);
  fPath = path;
}

cTempFile::~cTempFile() {
  if (fPath.empty()) return;
  const cSignalHold hold;
  unlink(fPath.c_str());
  gPathToRemove[0] = '\0';
}

void cTempFile::Commit() {
  const cSignalHold hold;
  if (std::rename(fPath.c_str(), fPlace.c_str()) != 0) {
    throw cFailure(eExitCode_CannotWrite, fTarget, std::strerror(errno));
  }
  gPathToRemove[0] = '\0';
  fPath.clear();
}

}  // namespace Cli
