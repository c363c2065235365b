#pragma once

#include <functional>
#include <stdexcept>
#include <string>

/// The log cannot be kept from standard error. Thrown before any work.
class cLogRefused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct sOwnLog {
  std::string fText;     ///< What the work wrote to standard error.
  bool fIsWhole = true;  ///< False where there was no memory for all of it.
};

/// Runs pWork, which must not throw, and returns what it wrote to stderr in place of writing it there.
///
/// The work runs on a thread with a table of descriptors of its own (Linux), where standard error is a file
/// in memory: so nothing is redirected for any other thread, there is no state to restore, and calls on
/// several threads cannot meet. Descriptors of the host are not in that table: a pipe that the host closes
/// meanwhile is closed. Signals of the process are left to the host's threads.
///
/// Throws cLogRefused, or std::bad_alloc.
sOwnLog RunWithOwnLog(const std::function<void()>& pWork);
