#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "tests/host/HostCalls.h"

// Calls whose log goes to a callback or nowhere, among threads with descriptors, signals and lines of their
// own.

namespace {

constexpr int kCallback = QUORVANE_HOST_LOG_CALLBACK;

sCaughtCall SmallCall(int pWidth = 40) {
  return sCaughtCall(HostImage(pWidth, 30, 16, 16));
}

TEST(HostLog, ThreadsGetTheirOwnLinesAndLeaveStandardErrorToOthers) {
  constexpr std::size_t kThreads = 4;
  constexpr int kCalls = 10;
  std::vector<sCaughtCall> calls;
  std::vector<std::string> logs;
  for (std::size_t i = 0; i < kThreads; ++i) {
    calls.push_back(SmallCall(30 + static_cast<int>(i)));
    logs.push_back(LogOf(calls.back()));
  }
  sCaughtCall toStderr = SmallCall(60);
  const std::string expected = LogOf(toStderr);

  std::atomic<bool> isOver = false;
  int printed = 0;
  cStderrCapture capture;
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      for (int k = 0; k < kCalls; ++k) {
        calls[i].fLines.clear();
        EXPECT_EQ(calls[i].RunWithCallback(), QUORVANE_HOST_DONE);
        EXPECT_EQ(calls[i].fLines, logs[i]);
        EXPECT_EQ(calls[i].Run(), QUORVANE_HOST_DONE);
      }
    });
  }
  std::thread printer([&] {
    while (!isOver) std::fprintf(stderr, "printed %d\n", printed++);
  });
  EXPECT_EQ(toStderr.Run(QUORVANE_HOST_LOG_STDERR), QUORVANE_HOST_DONE);
  for (std::thread& thread : threads) thread.join();
  isOver = true;
  printer.join();

  std::istringstream lines(capture.Text());
  std::string rest;
  int found = 0;
  for (std::string line; std::getline(lines, line);) {
    if (line == "printed " + std::to_string(found)) {
      ++found;
    } else {
      rest += line + '\n';
    }
  }
  EXPECT_EQ(found, printed);
  EXPECT_EQ(rest, expected);
}

TEST(HostLog, ACallbackMayPrintForkAndCallAgain) {
  struct sSeen {
    int fNested = -1, fChild = -1;
  } seen;
  cStderrCapture capture;
  const auto line = [](void* pSeen, const char*) {
    auto& to = *static_cast<sSeen*>(pSeen);
    if (to.fNested >= 0) return;
    std::fputs("from the callback\n", stderr);
    sCaughtCall nested = SmallCall();
    to.fNested = nested.RunWithCallback();
    const pid_t child = fork();
    if (child == 0) _exit(SmallCall().Run() == QUORVANE_HOST_DONE ? 0 : 1);
    waitpid(child, &to.fChild, 0);
  };
  EXPECT_EQ(SmallCall().Run(kCallback, line, &seen), QUORVANE_HOST_DONE);
  EXPECT_EQ(seen.fNested, QUORVANE_HOST_DONE);
  EXPECT_EQ(seen.fChild, 0);
  EXPECT_EQ(capture.Text(), "from the callback\n");
}

TEST(HostLog, ACallbackThatThrowsGetsNoMoreLines) {
  int lines = 0;
  const auto line = [](void* pLines, const char*) {
    ++*static_cast<int*>(pLines);
    throw std::runtime_error("out of the callback");
  };
  sCaughtCall call = SmallCall();
  EXPECT_EQ(call.Run(kCallback, line, &lines), QUORVANE_HOST_LOG_LOST);
  EXPECT_EQ(call.fReason, "The picture is done, but lines of its log were lost.");
  EXPECT_EQ(lines, 1);
  EXPECT_FALSE(call.OutputUntouched());
  call.fImage.height = 0;
  EXPECT_EQ(call.Run(kCallback, line, &lines), QUORVANE_HOST_INVALID_ARGUMENT);
}

/// What a host may have done to standard error, in a process of its own: the result, then the reason.
std::string ResultInChild(const std::function<void()>& pPrepare) {
  int ends[2];
  if (pipe(ends) != 0) return "no pipe";
  const pid_t child = fork();
  if (child == 0) {
    alarm(45);  // a call that waits for ever must not keep the test
    pPrepare();
    sCaughtCall call = SmallCall();
    const int result = call.RunWithCallback();
    const bool isConsistent =
        result == QUORVANE_HOST_DONE ? !call.fLines.empty() : call.fLines.empty() && call.OutputUntouched();
    dprintf(ends[1], "%d %s", result,
            isConsistent ? call.fReason.c_str() : "contradicted by lines or pixels");
    _exit(0);
  }
  close(ends[1]);
  char text[300] = {};
  const ssize_t bytes = read(ends[0], text, sizeof text - 1);
  close(ends[0]);
  waitpid(child, nullptr, 0);
  return bytes < 0 ? "nothing read" : text;
}

/// As a sandbox does: the system calls of the process fail from now on.
void Forbid(unsigned pCall, unsigned pOther = ~0u) {
  sock_filter filter[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, pCall, 2, 0), BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, pOther, 1, 0),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW), BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM)};
  const sock_fprog program = {5, filter};
  prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
  prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program);
}

TEST(HostLog, IsRefusedWhereItCannotBeKeptApart) {
  const auto isStream = [] { stderr = fmemopen(nullptr, 100, "w"); };
  const auto isNull = [] { stderr = nullptr; };
  const auto isBuffered = [] { setvbuf(stderr, nullptr, _IOLBF, 0); };
  const auto isReopened = [] { stderr = std::freopen("/dev/null", "w", stderr); };
  const auto isLocked = [] { flockfile(stderr); };
  const std::string hasBuffer =
      "5 Standard error has a buffer: setvbuf(stderr, NULL, _IONBF, 0) takes it away.";
  const std::string needs = "5 The log needs a thread with descriptors of its own. ";
  EXPECT_EQ(ResultInChild(isStream), "5 Standard error is a stream without a descriptor.");
  EXPECT_EQ(ResultInChild(isNull), "5 Standard error is a stream without a descriptor.");
  EXPECT_EQ(ResultInChild(isBuffered), hasBuffer);
  EXPECT_EQ(ResultInChild(isReopened), hasBuffer);
  EXPECT_EQ(ResultInChild(isLocked), needs + "The lock of standard error: Device or resource busy");
  const auto hasNoRoom = [] {
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_FSIZE, &none);
  };
  EXPECT_EQ(ResultInChild(hasNoRoom), needs + "posix_fallocate: File too large");
  EXPECT_EQ(ResultInChild([] { Forbid(SYS_close_range); }), needs + "close_range: Operation not permitted");
  EXPECT_EQ(ResultInChild([] { Forbid(SYS_memfd_create); }), needs + "memfd_create: Operation not permitted");
  EXPECT_EQ(ResultInChild([] { Forbid(SYS_clone3, SYS_clone); }),
            needs + "Starting a thread: Operation not permitted");
}

TEST(HostLog, ComesWhereStandardErrorIsClosedOrAnotherFile) {
  EXPECT_EQ(ResultInChild([] { close(STDERR_FILENO); }), "0 ");
  EXPECT_EQ(ResultInChild([] {
              close(STDIN_FILENO);
              stderr = std::fopen("/dev/null", "w");  // descriptor 0
              setvbuf(stderr, nullptr, _IONBF, 0);
            }),
            "0 ");
}

std::atomic<int> gSignals = 0;
std::atomic<bool> gWasElsewhere = false;
thread_local bool gIsHostThread = false;

std::ptrdiff_t CountThreads() {
  const std::filesystem::directory_iterator threads("/proc/self/task");
  return std::distance(begin(threads), end(threads));
}

void MaskSignal(int pHow) {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGUSR1);
  pthread_sigmask(pHow, &signals, nullptr);
}

/// Whether the other end of a pipe sees it closed while a call still works that began before.
bool ClosesPipeMeanwhile() {
  int ends[2];
  if (pipe(ends) != 0) return false;
  std::atomic<bool> isOver = false;
  std::thread caller([&] {
    gIsHostThread = true;
    EXPECT_EQ(sCaughtCall(HostImage(1000, 1000, 8, 8)).Run(), QUORVANE_HOST_DONE);
    isOver = true;
  });
  while (CountThreads() < 3 && !isOver) std::this_thread::yield();
  MaskSignal(SIG_BLOCK);  // the two other threads do not block it, unless one is the call's
  for (int i = 0; i < 10; ++i) {
    kill(getpid(), SIGUSR1);
    std::this_thread::sleep_for(std::chrono::microseconds(100));
  }
  close(ends[1]);
  char byte;
  EXPECT_EQ(read(ends[0], &byte, 1), 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(5));  // a call that ends closes what it holds
  const bool wasMeanwhile = !isOver;
  caller.join();
  close(ends[0]);
  MaskSignal(SIG_UNBLOCK);
  return wasMeanwhile;
}

TEST(HostLog, LeavesDescriptorsAndSignalsToTheHost) {
  struct sigaction action = {}, former = {};
  action.sa_handler = [](int) {
    if (!gIsHostThread) gWasElsewhere = true;
    ++gSignals;
  };
  sigaction(SIGUSR1, &action, &former);
  bool hasClosed = false;
  for (int i = 0; i < 10 && !(hasClosed && gSignals > 0); ++i) {  // the machine may be busy
    hasClosed = ClosesPipeMeanwhile() || hasClosed;
  }
  sigaction(SIGUSR1, &former, nullptr);
  EXPECT_TRUE(hasClosed) << "a descriptor of the host is held by the call";
  EXPECT_GT(gSignals, 0);
  EXPECT_FALSE(gWasElsewhere);
}

}  // namespace
