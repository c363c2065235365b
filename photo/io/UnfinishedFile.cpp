#include "photo/io/UnfinishedFile.h"

#include <atomic>
#include <climits>
#include <cstring>
#include <ctime>

namespace Photo {
namespace {

// Whoever has set the flag may use the path. The thread that changes it has its signals blocked before it
// sets the flag, so a handler never waits for the thread that it interrupted.
std::atomic_flag gIsInUse;
char gPath[PATH_MAX];

/// By a call that signal handlers may make.
void SleepAMoment() noexcept {
  constexpr timespec kMoment = {0, 1'000'000};
  nanosleep(&kMoment, nullptr);
}

}  // namespace

const char* TakeUnfinishedFile() noexcept {
  // A thread whose file system hangs must not keep the process from ending.
  constexpr int kMostMoments = 1000;
  for (int i = 0; i < kMostMoments; ++i) {
    if (!gIsInUse.test_and_set(std::memory_order_acquire)) return gPath;
    SleepAMoment();
  }
  return "";
}

cUnfinishedChange::cUnfinishedChange() noexcept {
  sigset_t set;
  sigfillset(&set);
  // What a fault of the program itself raises cannot wait.
  for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT}) sigdelset(&set, fault);
  pthread_sigmask(SIG_BLOCK, &set, &fFormer);
  while (gIsInUse.test_and_set(std::memory_order_acquire)) SleepAMoment();
}

cUnfinishedChange::~cUnfinishedChange() {
  gIsInUse.clear(std::memory_order_release);
  pthread_sigmask(SIG_SETMASK, &fFormer, nullptr);
}

void cUnfinishedChange::Note(const std::string& pPath) noexcept {
  if (pPath.size() < sizeof gPath) std::memcpy(gPath, pPath.c_str(), pPath.size() + 1);
}

void cUnfinishedChange::Forget(const std::string& pPath) noexcept {
  if (pPath == gPath) gPath[0] = '\0';
}

}  // namespace Photo
