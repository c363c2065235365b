#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <vector>

#include "tests/host/HostCalls.h"

// The memory and the stack of a call, as docs/hosts.md states them. Sanitizers take more of both.
#if !defined(QUORVANE_SANITIZED)

namespace {

/// Of a new process that has the buffers, and makes the call or not.
std::size_t PeakBytes(const tm_quorvane_image& pImage, float pWrap, bool pCalls) {
  const pid_t child = fork();
  if (child == 0) {
    sCaughtCall call(pImage);
    call.fSettings.horizontal_wrap = pWrap;
    call.fSettings.lighting = call.fSettings.microcontrast = 10.0f;  // the most memory within the ranges
    _exit(pCalls ? call.Run() : 0);
  }
  int result = -1;
  rusage usage = {};
  wait4(child, &result, 0, &usage);
  EXPECT_EQ(result, 0);
  return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

TEST(CallCost, TakesTheDocumentedMemory) {
  const struct {
    tm_quorvane_image fImage;
    float fWrap;
  } rows[] = {{HostImage(1000, 700, 8, 8), 0},
              {HostImage(3000, 2000, 16, 16), 0},
              {HostImage(3000, 2000, 32, 8), 1},
              {HostImage(60000, 100, 32, 8), 1}};
  for (const auto& row : rows) {
    const std::size_t added =
        PeakBytes(row.fImage, row.fWrap, true) - PeakBytes(row.fImage, row.fWrap, false);
    const auto pixels =
        static_cast<std::size_t>(row.fImage.width) * static_cast<std::size_t>(row.fImage.height);
    EXPECT_LT(added, 23 * pixels + 8'000'000) << row.fImage.width;
    EXPECT_GT(added, 20 * pixels) << row.fImage.width;
  }
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
