#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

#include "tests/host/HostCalls.h"

// The memory and the stack of a call, as docs/hosts.md states them. Sanitizers take more of both.
#if !defined(QUORVANE_SANITIZED)

namespace {

constexpr std::size_t kMegabyte = 1'000'000;

std::size_t ResidentBytes() {
  std::size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  return pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

std::size_t PeakBytes() {
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

/// What a call adds to the memory of its process, which is a new one: peaks stay.
void ExpectMemory(const tm_quorvane_image& pImage, float pWrap) {
  SCOPED_TRACE(testing::Message() << pImage.width << " x " << pImage.height << " " << pImage.input_bits);
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const pid_t child = fork();
  if (child == 0) {
    sCaughtCall call(pImage);
    call.fSettings.horizontal_wrap = pWrap;
    call.fSettings.lighting = call.fSettings.microcontrast = 10.0f;  // the most memory within the ranges
    const std::size_t before = ResidentBytes();
    const bool isDone = call.Run() == QUORVANE_HOST_DONE;
    const std::size_t added = isDone ? PeakBytes() - before : ~std::size_t{0};
    const ssize_t written = write(ends[1], &added, sizeof added);
    _exit(written == sizeof added ? 0 : 1);
  }
  std::size_t added = 0;
  EXPECT_EQ(read(ends[0], &added, sizeof added), static_cast<ssize_t>(sizeof added));
  close(ends[0]);
  close(ends[1]);
  waitpid(child, nullptr, 0);
  const auto pixels = static_cast<std::size_t>(pImage.width) * static_cast<std::size_t>(pImage.height);
  EXPECT_LT(added, 23 * pixels + 4 * kMegabyte);
  EXPECT_GT(added, 20 * pixels) << "the measurement";
}

TEST(CallCost, TakesTheDocumentedMemory) {
  ExpectMemory(HostImage(1000, 700, 8, 8), 0);
  ExpectMemory(HostImage(3000, 2000, 16, 16), 0);
  ExpectMemory(HostImage(3000, 2000, 32, 8), 1);
  ExpectMemory(HostImage(60000, 100, 32, 8), 1);
}

struct sStackUse {
  sCaughtCall* fCall;
  int fLog;
  const unsigned char* fStart;
  std::size_t fBytes;
};

/// Runs the call and measures how far down it wrote into the stack, which held one value throughout.
void* MeasureStack(void* pUse) {
  auto& use = *static_cast<sStackUse*>(pUse);
  EXPECT_EQ(use.fCall->Run(use.fLog), QUORVANE_HOST_DONE);
  const unsigned char* lowest = use.fStart;
  while (*lowest == 0xA5) ++lowest;
  use.fBytes = static_cast<std::size_t>(reinterpret_cast<const unsigned char*>(&lowest) - lowest);
  return nullptr;
}

std::size_t StackBytes(sCaughtCall pCall, int pLog) {
  std::vector<unsigned char> stack(std::size_t{1} << 20, 0xA5);
  sStackUse use = {&pCall, pLog, stack.data(), 0};
  pthread_attr_t attributes;
  pthread_t thread;
  pthread_attr_init(&attributes);
  pthread_attr_setstack(&attributes, stack.data(), stack.size());
  EXPECT_EQ(pthread_create(&thread, &attributes, MeasureStack, &use), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  return use.fBytes;
}

TEST(CallCost, TakesTheDocumentedStack) {
  cStderrCapture capture;
  for (const int input : {8, 16, 32}) {
    sCaughtCall call(HostImage(300, 200, input, 16));
    call.fSettings.horizontal_wrap = 1.0f;
    EXPECT_LT(StackBytes(call, QUORVANE_HOST_LOG_STDERR), 32u * 1024) << input;
    EXPECT_LT(StackBytes(call, QUORVANE_HOST_LOG_NONE), 8u * 1024) << input;
  }
}

}  // namespace

#endif
