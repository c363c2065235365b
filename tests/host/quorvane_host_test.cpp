#include "tests/host/HostCalls.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

#include "host/Reason.h"
#include "tests/AllocationHook.h"

namespace {

TEST(HostCall, GivesTheBytesOfTheExportedFunctionWhereverTheLogGoes) {
  sCall expected(HostImage(33, 21, 16, 16));
  expected.fSettings.white_clip = 40.0f;
  std::string log;
  {
    cStderrCapture capture;
    ASSERT_EQ(expected.Run(), 1);
    log = capture.Text();
  }
  for (const int mode : {QUORVANE_HOST_LOG_STDERR, QUORVANE_HOST_LOG_NONE, QUORVANE_HOST_LOG_CALLBACK}) {
    sCaughtCall call(expected.fImage);
    call.fSettings.white_clip = 40.0f;
    cStderrCapture capture;
    ASSERT_EQ(mode == QUORVANE_HOST_LOG_CALLBACK ? call.RunWithCallback() : call.Run(mode),
              QUORVANE_HOST_DONE);
    EXPECT_EQ(capture.Text(), mode == QUORVANE_HOST_LOG_STDERR ? log : "");
    EXPECT_EQ(call.fLines, mode == QUORVANE_HOST_LOG_CALLBACK ? log : "");
    EXPECT_EQ(call.fOutput, expected.fOutput);
    EXPECT_EQ(call.fSettings.white_clip, 40.0f);
    EXPECT_EQ(call.fReason, "");
  }
}

/// Every mode of the log gives the same result and reason, and the lines before the failure.
TEST(HostCall, ReturnsACodeAndAReasonForEveryFailure) {
  const float kNaN = std::numeric_limits<float>::quiet_NaN();
  const struct {
    void (*fBreak)(sCaughtCall&);
    int fResult;
    const char* fReason;
  } rows[] = {
      {[](sCaughtCall& p) { p.fImage.input_bits = 12; }, 1, "12 bits per input sample are not supported."},
      {[](sCaughtCall& p) { p.fImage.output_bits = 12; }, 2, "Output image is not set."},
      {[](sCaughtCall& p) { p.fImage.height = -3; }, 2, "Argument pHeight must be greater than zero."},
      {[](sCaughtCall& p) { p.fImage.samples_per_pixel = 0; }, 2,
       "Argument pSamplesPerPixel must be greater than zero."},
      {[](sCaughtCall& p) { p.fInput.pop_back(); }, 2,
       "The input buffer has 503 bytes, but the picture needs 504."},
      {[](sCaughtCall& p) { p.fSettings.lighting = p.fSettings.strength; }, 2,
       "Argument pLighting is out of range."},
      {[](sCaughtCall& p) { p.fSettings.microcontrast = p.fSettings.lighting = 1e30f; }, 3,
       "Microcontrast and Lighting ask for a grid far larger than the picture."},
  };
  for (const auto& row : rows) {
    sCaughtCall call(HostImage(12, 14, 8, 8));
    call.fSettings.strength = kNaN;
    row.fBreak(call);
    const std::string log = LogOf(call);
    EXPECT_EQ(call.RunWithCallback(), row.fResult) << row.fReason;
    EXPECT_EQ(call.fReason, row.fReason);
    EXPECT_EQ(call.fLines, log) << row.fReason;
    EXPECT_TRUE(call.OutputUntouched()) << row.fReason;
  }
}

TEST(HostCall, ReportsWrongArgumentsOfItsOwn) {
  sCaughtCall call(HostImage(12, 14, 8, 8));
  const auto text = [&](const tm_quorvane_image* pImage, const tm_quorvane_settings* pSettings,
                        const void* pInput, int pColorSpace, int pLog) {
    char reason[100];
    const int result = quorvane_host_tonemap(pImage, pColorSpace, pSettings, pInput, 504, call.fOutput.data(),
                                             504, pLog, nullptr, nullptr, reason, sizeof reason);
    return std::to_string(result) + " " + reason;
  };
  const auto* const image = &call.fImage;
  const auto* const settings = &call.fSettings;
  const void* const input = call.fInput.data();
  EXPECT_EQ(text(nullptr, settings, input, 0, 1), "2 The image is NULL.");
  EXPECT_EQ(text(image, nullptr, input, 0, 1), "2 The settings are NULL.");
  EXPECT_EQ(text(image, settings, nullptr, 0, 1), "2 Argument pInputPixels cannot be null.");
  EXPECT_EQ(text(image, settings, input, 3, 1), "1 Colour space 3 is not supported.");
  EXPECT_EQ(text(image, settings, input, 0, 2), "2 The log's callback is NULL.");
  EXPECT_EQ(text(image, settings, input, 0, 3), "2 The log must be 0, 1 or 2.");
  EXPECT_EQ(quorvane_host_input_size(image), 504u);
  EXPECT_EQ(quorvane_host_output_size(image), 504u);
}

/// Refuses one block of the thread.
class cRefusal : public cAllocationHook {
 public:
  explicit cRefusal(int pRefused) : fLeft(pRefused) {}
  bool Allows(std::size_t) override { return fLeft == 0 || --fLeft != 0; }
  void Taken(void*, std::size_t) override {}
  void Returned(void*) override {}
  int fLeft;
};

TEST(HostCall, ReportsALackOfMemoryWhereverItComes) {
  for (const int mode : {QUORVANE_HOST_LOG_STDERR, QUORVANE_HOST_LOG_CALLBACK}) {
    cStderrCapture capture;
    sCaughtCall undisturbed(HostImage(12, 14, 8, 8));
    ASSERT_EQ(undisturbed.RunWithCallback(), QUORVANE_HOST_DONE);
    int failures = 0;
    for (int refused = 1;; ++refused) {
      sCaughtCall call(undisturbed.fImage);
      call.fReason.reserve(200);
      cRefusal refusal(refused);
      const int result = call.Run(
          mode, [](void*, const char*) {}, nullptr);
      refusal.Remove();
      if (refusal.fLeft != 0) break;  // the call takes fewer blocks
      if (result == QUORVANE_HOST_DONE) continue;
      ++failures;
      ASSERT_TRUE(result == QUORVANE_HOST_OUT_OF_MEMORY || result == QUORVANE_HOST_LOG_REFUSED) << refused;
      ASSERT_NE(call.fReason, "");
      ASSERT_TRUE(call.OutputUntouched());
    }
    EXPECT_GT(failures, mode == QUORVANE_HOST_LOG_STDERR ? 20 : 0);
  }
}

TEST(HostCall, CutsReasonsAtWholeCharacters) {
  const struct {
    const char* fText;
    std::size_t fSize;
    const char* fCut;
  } rows[] = {{"abc", 4, "abc"},          {"abc", 3, "ab"},     {"abc", 1, ""},
              {"a\u00e4b", 4, "a\u00e4"}, {"a\u00e4b", 3, "a"}, {"a\u20ac", 5, "a\u20ac"},
              {"a\u20ac", 4, "a"},        {"\U0001f305", 4, ""}};
  for (const auto& row : rows) {
    char buffer[6] = "#####";
    WriteReason(row.fText, buffer, row.fSize);
    EXPECT_STREQ(buffer, row.fCut);
    EXPECT_EQ(buffer[row.fSize], row.fSize < 5 ? '#' : '\0');
  }
  WriteReason("abc", nullptr, 5);
  char untouched = '#';
  WriteReason("abc", &untouched, 0);
  EXPECT_EQ(untouched, '#');
}

/// The end of a thread is no error: it passes through, or waits until the call is over.
TEST(HostCall, LetsThreadsEnd) {
  const auto exits = [](void* pCall) -> void* {
    static_cast<sCaughtCall*>(pCall)->Run(
        QUORVANE_HOST_LOG_CALLBACK, [](void* pValue, const char*) { pthread_exit(pValue); }, pCall);
    return nullptr;
  };
  const auto isCancelled = [](void* pCall) -> void* {
    pthread_cancel(pthread_self());
    static_cast<sCaughtCall*>(pCall)->Run();
    static_cast<sCaughtCall*>(pCall)->Run(QUORVANE_HOST_LOG_STDERR);
    return nullptr;
  };
  sCaughtCall calls[] = {sCaughtCall(HostImage(12, 14, 8, 8)), sCaughtCall(HostImage(12, 14, 8, 8))};
  cStderrCapture capture;
  pthread_t threads[2];
  pthread_create(&threads[0], nullptr, exits, &calls[0]);
  pthread_create(&threads[1], nullptr, isCancelled, &calls[1]);
  void *first = nullptr, *second = nullptr;
  pthread_join(threads[0], &first);
  pthread_join(threads[1], &second);
  EXPECT_EQ(first, &calls[0]);
  EXPECT_EQ(second, PTHREAD_CANCELED);
  EXPECT_FALSE(calls[1].OutputUntouched()) << "the redirected call is complete";
}

}  // namespace
