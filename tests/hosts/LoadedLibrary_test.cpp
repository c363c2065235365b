#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <array>
#include <atomic>
#include <cfenv>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif
#if defined(TEST_SANITIZED)
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();  // NOLINT: the sanitizer's name
#endif

#include "tests/HostCall.h"
#include "tests/StderrCapture.h"

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

/// Control bits and status flags of the calling thread.
struct sFloatingPoint {
  std::array<unsigned, 3> fWords = {};
  int fRounding = std::fegetround();
  int fRaised = std::fetestexcept(FE_ALL_EXCEPT);
  bool operator==(const sFloatingPoint&) const = default;

  static sFloatingPoint Current() {
    sFloatingPoint state;
#if defined(__x86_64__)
    unsigned short control = 0, status = 0;
    __asm__ volatile("fnstcw %0\n\tfnstsw %1" : "=m"(control), "=m"(status));
    state.fWords = {_mm_getcsr(), control, status};
#elif defined(__aarch64__)
    unsigned long control = 0, status = 0;
    __asm__ volatile("mrs %0, fpcr\n\tmrs %1, fpsr" : "=r"(control), "=r"(status));
    state.fWords = {static_cast<unsigned>(control), static_cast<unsigned>(status), 0};
#endif
    return state;
  }
};

void FlushDenormals() {
#if defined(__x86_64__)
  _mm_setcsr(_mm_getcsr() | 0x8040);  // flush to zero, denormals are zero
#elif defined(__aarch64__)
  unsigned long control = 0;
  __asm__ volatile("mrs %0, fpcr" : "=r"(control));
  __asm__ volatile("msr fpcr, %0" : : "r"(control | (1ul << 24)));
#endif
}

struct sState {
  const char* fName;
  void (*fSet)();
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

/// Whether the call left the thread's state as it was.
template <class tCall>
bool KeepsState(const sState& pState, const tCall& pCall) {
  std::fesetenv(FE_DFL_ENV);
  pState.fSet();
  const sFloatingPoint before = sFloatingPoint::Current();
  pCall();
  const sFloatingPoint after = sFloatingPoint::Current();
  std::fesetenv(FE_DFL_ENV);
  return before == after;
}

std::size_t HeapBytes() {
#if defined(TEST_SANITIZED)
  return __sanitizer_get_current_allocated_bytes();
#else
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
#endif
}

TEST(LoadedLibrary, LeavesNothingBehindWhenUnloaded) {
  cStderrCapture capture;
  std::size_t before = 0;
  for (int i = 0; i < 60; ++i) {
    {
      const cLibrary library;
      sCall call = DarkCall(i % 2 == 0 ? 32 : 8);
      ASSERT_EQ(library.Run(call), 1);
    }
    ASSERT_EQ(dlopen(QUORVANE_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr) << "the library stays loaded";
    if (i == 9) before = HeapBytes();  // by now loader and C library hold what they keep
  }
  EXPECT_LE(HeapBytes(), before);
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
