#include "engine/base/LogLine.h"

#include <cstdarg>
#include <cstdio>

#if defined(__linux__)
#include <pthread.h>

#include <csignal>
#include <ctime>
#endif

namespace TmEngine {
namespace {

#if defined(__linux__)

/// Holds SIGPIPE back from the calling thread while it lives. A failed write sends it to the thread that
/// wrote, so what Drop takes away is never meant for another.
class cNoPipeSignal {
 public:
  cNoPipeSignal() {
    sigemptyset(&fPipe);
    sigaddset(&fPipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &fPipe, &fHostMask);
    fHostsIsWaiting = IsWaiting();
  }
  cNoPipeSignal(const cNoPipeSignal&) = delete;
  cNoPipeSignal& operator=(const cNoPipeSignal&) = delete;
  ~cNoPipeSignal() { pthread_sigmask(SIG_SETMASK, &fHostMask, nullptr); }

  /// After a write that failed. A signal of the host that waits for this thread takes up ours: it is sent
  /// again. One that waits for the whole process stays when ours is taken.
  void Drop() const {
    const timespec noTime = {};
    sigtimedwait(&fPipe, nullptr, &noTime);
    if (fHostsIsWaiting && !IsWaiting()) pthread_kill(pthread_self(), SIGPIPE);
  }

 private:
  static bool IsWaiting() {
    sigset_t waiting;
    sigpending(&waiting);
    return sigismember(&waiting, SIGPIPE) == 1;
  }

  sigset_t fPipe;
  sigset_t fHostMask;
  bool fHostsIsWaiting;
};

#else

class cNoPipeSignal {
 public:
  void Drop() const {}
};

#endif

}  // namespace

void LogLine(const char* pFormat, ...) {
  const cNoPipeSignal scope;
  std::va_list arguments;
  va_start(arguments, pFormat);
  const int written = std::vfprintf(stderr, pFormat, arguments);
  va_end(arguments);
  if (written < 0) scope.Drop();
}

}  // namespace TmEngine
