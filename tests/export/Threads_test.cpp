#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "tests/StderrCapture.h"
#include "tests/export/HostCall.h"

namespace {

TEST(Threads, HostsAtTheSameTimeGetTheSameBytes) {
  std::vector<sCall> calls;
  for (int i = 0; i < 8; ++i) {
    calls.emplace_back(HostImage(61 + i % 2, 40, i % 3 == 0 ? 32 : 16, i % 2 == 0 ? 8 : 16));
    calls.back().fSettings.horizontal_wrap = static_cast<float>(i % 2);
  }
  std::vector<sCall> alone = calls;
  cStderrCapture capture;
  for (int i = 0; i < 8; ++i) EXPECT_EQ(alone[static_cast<std::size_t>(i)].Run(i % 3), 1);
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back([&call = calls[static_cast<std::size_t>(i)], i] { call.Run(i % 3); });
  }
  for (std::thread& thread : threads) thread.join();
  for (std::size_t i = 0; i < 8; ++i) EXPECT_EQ(calls[i].fOutput, alone[i].fOutput) << i;
}

}  // namespace
