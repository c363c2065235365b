#include <gtest/gtest.h>

#include <exception>
#include <limits>
#include <stdexcept>
#include <string>

#include "tests/StderrCapture.h"
#include "tests/export/FloatingPointStates.h"
#include "tests/export/HostCall.h"

// A host in C++ that links with the import library.

namespace {

std::string TextOfException(sCall& pCall) {
  try {
    pCall.Run();
  } catch (const std::runtime_error& exception) {
    return exception.what();
  }
  return "nothing was thrown";
}

TEST(LinkedLibrary, ThrowsWhatItsHostCatches) {
  const struct {
    void (*fBreak)(sCall&);
    const char* fText;
  } rows[] = {{[](sCall& c) { c.fSettings.lighting = std::numeric_limits<float>::quiet_NaN(); },
               "Argument pLighting is out of range."},
              {[](sCall& c) { c.fImage.width = 0; }, "Argument pWidth must be greater than zero."},
              {[](sCall& c) { c.fImage.samples_per_pixel = 0; },
               "Argument pSamplesPerPixel must be greater than zero."}};
  for (const auto& row : rows) {
    sCall call(HostImage(8, 8, 8, 8));
    row.fBreak(call);
    cStderrCapture capture;
    EXPECT_EQ(TextOfException(call), row.fText);
    EXPECT_EQ(std::uncaught_exceptions(), 0) << "host and library count exceptions apart";
  }
}

TEST(LinkedLibrary, GivesTheSameBytesInEveryFloatingPointState) {
  const sState states[] = {
      {"default", [] {}},
      {"flush to zero", FlushDenormals},
      {"upward", [] { std::fesetround(FE_UPWARD); }},
      {"raised flags", [] { std::feraiseexcept(FE_DIVBYZERO | FE_UNDERFLOW); }},
      {"upward, flush to zero, traps", [] {
         std::fesetround(FE_UPWARD);
         FlushDenormals();
         _mm_setcsr(_mm_getcsr() & ~static_cast<unsigned>(_MM_MASK_INVALID | _MM_MASK_OVERFLOW));
       }}};
  cStderrCapture capture;
  sCall expected(HostImage(40, 9, 32, 16));
  ASSERT_EQ(expected.Run(), 1);
  for (const sState& state : states) {
    sCall call(expected.fImage);
    EXPECT_TRUE(KeepsState(state, [&] { call.Run(); })) << state.fName;
    EXPECT_EQ(call.fOutput, expected.fOutput) << state.fName;
  }
}

}  // namespace
