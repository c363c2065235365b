#pragma once

#include <string>
#include <vector>

#include "host/quorvane_host.h"
#include "tests/StderrCapture.h"
#include "tests/export/HostCall.h"

/// A call with buffers of its own, through the function that catches.
struct sCaughtCall : sCall {
  using sCall::sCall;

  int Run(int pLog = QUORVANE_HOST_LOG_NONE, quorvane_host_line pLine = nullptr, void* pUser = nullptr) {
    char reason[200];
    const int result =
        quorvane_host_tonemap(&fImage, 0, &fSettings, fInput.data(), fInput.size(), fOutput.data(),
                              fOutput.size(), pLog, pLine, pUser, reason, sizeof reason);
    fReason = reason;
    return result;
  }

  /// With the lines gathered in fLines.
  int RunWithCallback() {
    const auto gather = [](void* pTo, const char* pLine) {
      static_cast<std::string*>(pTo)->append(pLine) += '\n';
    };
    return Run(QUORVANE_HOST_LOG_CALLBACK, gather, &fLines);
  }

  std::string fReason, fLines;
};

/// What the same call writes to standard error.
inline std::string LogOf(sCaughtCall pCall) {
  cStderrCapture capture;
  pCall.Run(QUORVANE_HOST_LOG_STDERR);
  return capture.Text();
}
