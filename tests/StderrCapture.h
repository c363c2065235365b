#pragma once

#include <gtest/gtest.h>

#include <string>

/// Takes what the process writes to standard error while it lives. One at a time.
class cStderrCapture {
 public:
  cStderrCapture() { testing::internal::CaptureStderr(); }
  cStderrCapture(const cStderrCapture&) = delete;
  cStderrCapture& operator=(const cStderrCapture&) = delete;
  ~cStderrCapture() {
    if (fIsOn) Text();
  }

  /// Ends the capture and returns the text.
  std::string Text() {
    fIsOn = false;
    return testing::internal::GetCapturedStderr();
  }

 private:
  bool fIsOn = true;
};
