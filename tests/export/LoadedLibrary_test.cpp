#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cfenv>
#include <csignal>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#if defined(TEST_SANITIZED)
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();  // NOLINT: the sanitizer's name
#endif

#include "tests/StderrCapture.h"
#include "tests/export/FloatingPointStates.h"
#include "tests/export/HostCall.h"

// Hosts that load the library when they need it, as plug-ins are loaded.

namespace {

/// The library while it is loaded.
class cLibrary {
 public:
  cLibrary() : fHandle(dlopen(QUORVANE_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
    if (fHandle == nullptr) throw std::runtime_error(dlerror());
    fFunction = reinterpret_cast<tFunction>(dlsym(fHandle, "cpp_tm_quorvane"));
    if (fFunction == nullptr) throw std::runtime_error(dlerror());
  }
  cLibrary(const cLibrary&) = delete;
  cLibrary& operator=(const cLibrary&) = delete;
  ~cLibrary() { dlclose(fHandle); }

  int Run(sCall& pCall) const {
    return fFunction(&pCall.fImage, nullptr, 2, &pCall.fSettings, pCall.fInput.data(), pCall.fOutput.data());
  }

 private:
  using tFunction = decltype(&cpp_tm_quorvane);
  void* fHandle;
  tFunction fFunction;
};

const sState kStates[] = {{"default", [] {}},
                          {"flush to zero", FlushDenormals},
                          {"upward", [] { std::fesetround(FE_UPWARD); }},
                          {"downward", [] { std::fesetround(FE_DOWNWARD); }},
                          {"toward zero", [] { std::fesetround(FE_TOWARDZERO); }},
                          {"raised flags", [] { std::feraiseexcept(FE_DIVBYZERO | FE_UNDERFLOW); }},
                          {"traps", [] { feenableexcept(FE_DIVBYZERO | FE_INVALID | FE_OVERFLOW); }},
                          {"upward, flush to zero, traps", [] {
                             std::fesetround(FE_UPWARD);
                             FlushDenormals();
                             feenableexcept(FE_INVALID);
                           }}};

/// A picture with black pixels, whose luminance floor is a denormal number, and with denormal values.
sCall DarkCall(int pInputBits) {
  sCall call(HostImage(40, 9, pInputBits, 16));
  call.fSettings.strength = 20.0f;
  call.fSettings.white_clip = 7.0f;
  call.fSettings.tone_compression = 3.0f;
  for (std::size_t i = 0; i < call.fInput.size(); i += 3) call.fInput[i] = static_cast<unsigned char>(i % 10);
  return call;
}

/// Standard error without a reader, or closed, while it lives.
class cBrokenStderr {
 public:
  explicit cBrokenStderr(bool pClosed) : fSaved(dup(STDERR_FILENO)) {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    dup2(ends[1], STDERR_FILENO);
    close(ends[0]);
    close(ends[1]);
    if (pClosed) close(STDERR_FILENO);
  }
  cBrokenStderr(const cBrokenStderr&) = delete;
  cBrokenStderr& operator=(const cBrokenStderr&) = delete;
  ~cBrokenStderr() {
    dup2(fSaved, STDERR_FILENO);
    close(fSaved);
  }

 private:
  int fSaved;
};

volatile std::sig_atomic_t gPipeSignals = 0;

/// What the thread does with SIGPIPE while it lives: a handler counts those that arrive.
class cPipeSignals {
 public:
  explicit cPipeSignals(bool pBlocked) {
    struct sigaction handler = {};
    handler.sa_handler = [](int) { gPipeSignals = gPipeSignals + 1; };
    sigaction(SIGPIPE, &handler, &fFormer);
    gPipeSignals = 0;
    Block(pBlocked);
  }
  cPipeSignals(const cPipeSignals&) = delete;
  cPipeSignals& operator=(const cPipeSignals&) = delete;
  ~cPipeSignals() {
    Block(false);
    sigaction(SIGPIPE, &fFormer, nullptr);
  }

  /// All that arrived, and those that wait.
  int Count() {
    EXPECT_EQ(Block(false), fIsBlocked) << "the host's mask stays";
    return gPipeSignals;
  }

 private:
  /// Whether it was blocked before.
  bool Block(bool pBlocked) {
    fIsBlocked = pBlocked || fIsBlocked;
    sigset_t pipeSignal, former;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    pthread_sigmask(pBlocked ? SIG_BLOCK : SIG_UNBLOCK, &pipeSignal, &former);
    return sigismember(&former, SIGPIPE) == 1;
  }

  struct sigaction fFormer = {};
  bool fIsBlocked = false;
};

std::size_t HeapBytes() {
#if defined(TEST_SANITIZED)
  return __sanitizer_get_current_allocated_bytes();
#else
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
#endif
}

TEST(LoadedLibrary, LeavesNothingBehindWhenUnloaded) {
  constexpr int kFirstLoads = 10;  // by then loader and C library hold what they keep
  constexpr int kLoads = 50;
  // The C library counts whole blocks of 32 bytes or more, and now and then hands out one that is 16 bytes
  // too long; what each load leaves behind adds up to more than that.
  constexpr std::size_t kSmallestBlock = 32;
  cStderrCapture capture;
  std::size_t before = 0;
  for (int i = 0; i < kFirstLoads + kLoads; ++i) {
    {
      const cLibrary library;
      sCall call = DarkCall(i % 2 == 0 ? 32 : 8);
      ASSERT_EQ(library.Run(call), 1);
    }
    ASSERT_EQ(dlopen(QUORVANE_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr) << "the library stays loaded";
    if (i == kFirstLoads - 1) before = HeapBytes();
  }
  EXPECT_LT(HeapBytes(), before + kLoads * kSmallestBlock);
}

TEST(LoadedLibrary, GivesTheSameBytesInEveryFloatingPointState) {
  const cLibrary library;
  for (const int bits : {8, 16, 32}) {
    sCall expected = DarkCall(bits);
    cStderrCapture capture;
    ASSERT_EQ(library.Run(expected), 1);
    const std::string log = capture.Text();
    for (const sState& state : kStates) {
      sCall call = DarkCall(bits);
      cStderrCapture again;
      EXPECT_TRUE(KeepsState(state, [&] { library.Run(call); })) << state.fName;
      EXPECT_EQ(again.Text(), log) << state.fName;
      EXPECT_EQ(call.fOutput, expected.fOutput) << state.fName;
      EXPECT_EQ(call.fSettings.white_clip, expected.fSettings.white_clip);
    }
  }
}

TEST(LoadedLibrary, KeepsTheFloatingPointStateWhenItFails) {
  // Stays loaded: a leak checker knows the kept texts of exceptions by the names of the library.
  static const cLibrary& library = *new cLibrary;
  cStderrCapture capture;
  for (const sState& state : kStates) {
    for (const int failure : {0, 1, 2}) {
      sCall call = DarkCall(failure == 0 ? 12 : 32);
      if (failure == 1) call.fSettings.lighting = std::numeric_limits<float>::quiet_NaN();
      if (failure == 2) call.fImage.samples_per_pixel = 0;
      bool hasFailed = false;
      EXPECT_TRUE(KeepsState(state, [&] {
        try {
          hasFailed = library.Run(call) == -2;
        } catch (const std::runtime_error&) {
          hasFailed = true;
        }
      })) << state.fName;
      EXPECT_TRUE(hasFailed);
    }
  }
}

/// Nothing of the host's signals changes, and the picture is done.
TEST(LoadedLibrary, WritesToABrokenStandardErrorWithoutASignal) {
  const cLibrary library;
  const struct {
    const char* fName;
    bool fIsClosed, fIsBlocked;
    void (*fSend)();
    int fSignals;
  } rows[] = {{"nobody reads", false, false, [] {}, 0},
              {"closed", true, false, [] {}, 0},
              {"blocked by the host", false, true, [] {}, 0},
              {"one waits for the thread", false, true, [] { pthread_kill(pthread_self(), SIGPIPE); }, 1},
              {"one waits for the process", false, true, [] { kill(getpid(), SIGPIPE); }, 1}};
  for (const auto& row : rows) {
    sCall expected = DarkCall(32), call = DarkCall(32);  // 16 bits out: with lines of sampled pixels
    {
      cStderrCapture capture;
      ASSERT_EQ(library.Run(expected), 1);
    }
    cPipeSignals signals(row.fIsBlocked);
    row.fSend();
    int result = 0;
    {
      const cBrokenStderr broken(row.fIsClosed);
      result = library.Run(call);
    }
    EXPECT_EQ(result, 1) << row.fName;
    EXPECT_EQ(signals.Count(), row.fSignals) << row.fName;
    EXPECT_EQ(call.fOutput, expected.fOutput) << row.fName;
  }
}

TEST(LoadedLibrary, ServesThreadsInStatesOfTheirOwn) {
  const cLibrary library;
  cStderrCapture capture;
  sCall expected = DarkCall(32);
  library.Run(expected);
  std::atomic<int> good = 0;
  std::vector<std::thread> threads;
  for (const sState& state : kStates) {
    threads.emplace_back([&] {
      sCall call = DarkCall(32);
      good += KeepsState(state, [&] { library.Run(call); }) && call.fOutput == expected.fOutput ? 1 : 0;
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(good, 8);
}

}  // namespace
