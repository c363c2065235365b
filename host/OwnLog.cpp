#include "host/OwnLog.h"

#if defined(__linux__) && defined(__GLIBC__)

#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <new>
#include <utility>

namespace {

constexpr std::size_t kStackBytes = std::size_t{1} << 20;  // a call takes 32 KiB of it
constexpr off_t kLogBytes = 1 << 16;                       // a call writes some 4 KiB

/// One run, shared by the calling thread and the one that works.
struct sRun {
  const std::function<void()>* fWork = nullptr;
  int fDescriptor = -1;               // of stderr
  const char* fFailedStep = nullptr;  // what the system refused, and why; then there was no work
  int fError = 0;
  sOwnLog fLog;
};

/// Blocks the signals that are sent to the process, so that a thread started meanwhile handles none of them.
/// The others report faults of the thread itself.
class cNoSignals {
 public:
  cNoSignals() {
    sigset_t all;
    sigfillset(&all);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS}) sigdelset(&all, fault);
    pthread_sigmask(SIG_SETMASK, &all, &fFormer);
  }
  cNoSignals(const cNoSignals&) = delete;
  cNoSignals& operator=(const cNoSignals&) = delete;
  ~cNoSignals() { pthread_sigmask(SIG_SETMASK, &fFormer, nullptr); }

 private:
  sigset_t fFormer;
};

/// A thread that waits for another with its own variables must not be cancelled.
class cNoCancel {
 public:
  cNoCancel() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &fFormer); }
  cNoCancel(const cNoCancel&) = delete;
  cNoCancel& operator=(const cNoCancel&) = delete;
  ~cNoCancel() { pthread_setcancelstate(fFormer, nullptr); }

 private:
  int fFormer;
};

/// Where standard error writes. Throws cLogRefused where its bytes do not reach a descriptor at once.
int DescriptorOfStderr() {
  constexpr int kUnbuffered = 2;  // the C library's own flag: __fbufsize knows buffers only after a write
  const int descriptor = stderr != nullptr ? fileno(stderr) : -1;
  if (descriptor < 0) throw cLogRefused("Standard error is a stream without a descriptor.");
  if ((stderr->_flags & kUnbuffered) == 0)
    throw cLogRefused("Standard error has a buffer: setvbuf(stderr, NULL, _IONBF, 0) takes it away.");
  return descriptor;
}

/// The calling thread waits, so where it holds the lock, lines would wait for ever.
bool IsStderrLocked() {
  constexpr timespec kPause = {0, 1'000'000};
  for (int i = 0; i < 1000; ++i) {
    if (ftrylockfile(stderr) == 0) {
      funlockfile(stderr);
      return false;
    }
    nanosleep(&kPause, nullptr);
  }
  return true;
}

bool Fails(sRun& pRun, const char* pStep, bool pFailed) {
  if (!pFailed) return false;
  pRun.fError = errno;
  pRun.fFailedStep = pStep;
  return true;
}

/// Gives the calling thread an empty table of descriptors, with a file in memory for standard error.
bool OpenOwnLog(sRun& pRun) {
  constexpr unsigned kUnshare = 2;  // CLOSE_RANGE_UNSHARE
  if (Fails(pRun, "close_range", syscall(SYS_close_range, 0u, ~0u, kUnshare) != 0)) return false;
  const int file = memfd_create("quorvane log", 0);
  if (Fails(pRun, "memfd_create", file < 0)) return false;
  errno = posix_fallocate(file, 0, kLogBytes);  // so that no line is lost for lack of memory
  if (Fails(pRun, "posix_fallocate", errno != 0)) return false;
  if (file == pRun.fDescriptor) return true;
  // By its number, because thread sanitizers take all descriptors for the process's.
  return !Fails(pRun, "dup3", syscall(SYS_dup3, file, pRun.fDescriptor, 0) < 0);
}

void ReadOwnLog(sRun& pRun) {
  const off_t bytes = lseek(pRun.fDescriptor, 0, SEEK_CUR);
  std::string& text = pRun.fLog.fText;
  text.resize(static_cast<std::size_t>(bytes < 0 ? 0 : bytes));
  const ssize_t read = pread(pRun.fDescriptor, text.data(), text.size(), 0);
  pRun.fLog.fIsWhole = read == bytes;
  text.resize(static_cast<std::size_t>(read < 0 ? 0 : read));
}

void* ThreadMain(void* pRun) {
  auto& run = *static_cast<sRun*>(pRun);
  if (IsStderrLocked()) {
    run.fFailedStep = "The lock of standard error";
    run.fError = EBUSY;
  }
  if (run.fFailedStep != nullptr || !OpenOwnLog(run)) return nullptr;
  (*run.fWork)();
  try {
    ReadOwnLog(run);
  } catch (const std::bad_alloc&) {
    run.fLog.fIsWhole = false;
  }
  return nullptr;
}

/// The error of starting the thread, or 0.
int RunOnThread(sRun& pRun) {
  const cNoCancel noCancel;
  pthread_attr_t attributes;
  pthread_t thread;
  if (const int error = pthread_attr_init(&attributes); error != 0) return error;
  pthread_attr_setstacksize(&attributes, kStackBytes);
  int error;
  {
    const cNoSignals noSignals;
    error = pthread_create(&thread, &attributes, ThreadMain, &pRun);
  }
  pthread_attr_destroy(&attributes);
  return error != 0 ? error : pthread_join(thread, nullptr);
}

}  // namespace

sOwnLog RunWithOwnLog(const std::function<void()>& pWork) {
  sRun run;
  run.fWork = &pWork;
  run.fDescriptor = DescriptorOfStderr();
  if (const int error = RunOnThread(run); error != 0) {
    run.fFailedStep = "Starting a thread";
    run.fError = error;
  }
  if (run.fFailedStep != nullptr)
    throw cLogRefused(std::string("The log needs a thread with descriptors of its own. ") + run.fFailedStep +
                      ": " + std::strerror(run.fError));
  return std::move(run.fLog);
}

#else

sOwnLog RunWithOwnLog(const std::function<void()>&) {
  throw cLogRefused("On this system the log goes to standard error only.");
}

#endif
