#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cfenv>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <ctime>

#include "engine/base/System.h"

namespace TmEngine {
namespace {

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

}  // namespace

/// Whole pages of the block only: its ends may belong to others.
void AdviseLargePages(void* pBlock, std::size_t pBytes) {
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto start = reinterpret_cast<std::uintptr_t>(pBlock);
  const std::uintptr_t first = (start + page - 1) / page * page;
  const std::uintptr_t end = (start + pBytes) / page * page;
  madvise(static_cast<char*>(pBlock) + (first - start), end - first, MADV_HUGEPAGE);
}

/// What was taken to find the start of a large page goes back at once.
char* MapLargePages(std::size_t pBytes) {
  void* const mapped =
      mmap(nullptr, pBytes + kLargePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) return nullptr;
  char* const first = static_cast<char*>(mapped);
  const std::size_t lead = (kLargePage - reinterpret_cast<std::uintptr_t>(mapped) % kLargePage) % kLargePage;
  if (lead > 0) munmap(first, lead);
  munmap(first + lead + pBytes, kLargePage - lead);
  madvise(first + lead, pBytes, MADV_HUGEPAGE);
  return first + lead;
}

void UnmapLargePages(char* pStart, std::size_t pBytes) {
  munmap(pStart, pBytes);
}

sFloatingPoint GetFloatingPoint() {
  sFloatingPoint state = {};
  std::fegetenv(&state.fState);
  return state;
}

void SetFloatingPoint(const sFloatingPoint& pState) {
  std::fesetenv(&pState.fState);
}

/// The C library's default also clears the bits that flush denormal numbers to zero.
void SetDefaultFloatingPoint() {
  std::fesetenv(FE_DFL_ENV);
}

void PrintToStandardError(const char* pFormat, std::va_list pArguments) {
  const cNoPipeSignal scope;
  const int written = std::vfprintf(stderr, pFormat, pArguments);
  if (written < 0) scope.Drop();
}

}  // namespace TmEngine
