#pragma once

#include <chrono>
#include <optional>

namespace Tool {

/// How long a task may take; the clock can be stopped while the task has to wait for others.
class cTaskClock {
 public:
  using tTime = std::chrono::steady_clock;

  void Start(tTime::duration pLimit) {
    fLeft = pLimit;
    Resume();
  }
  void Stop() {
    if (fEnd.has_value()) fLeft = *fEnd - tTime::now();
    fEnd.reset();
  }
  void Resume() { fEnd = tTime::now() + fLeft; }

  /// When the time is over; nothing while the clock is stopped.
  std::optional<tTime::time_point> GetEnd() const { return fEnd; }
  bool IsOver() const { return fEnd.has_value() && tTime::now() >= *fEnd; }

 private:
  tTime::duration fLeft{};
  std::optional<tTime::time_point> fEnd;
};

}  // namespace Tool
