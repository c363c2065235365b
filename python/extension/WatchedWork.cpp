#include "python/extension/WatchedWork.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>

#include "export/FloatingPointScope.h"
#include "python/extension/Failures.h"

namespace Python {
namespace {

namespace py = pybind11;

/// The thread of the work.
class cWorker {
 public:
  cWorker(const std::function<void(Photo::cWatch&)>& pWork, Photo::cWatch& pWatch)
      : fThread([this, &pWork, &pWatch] { Run(pWork, pWatch); }) {}
  cWorker(const cWorker&) = delete;
  cWorker& operator=(const cWorker&) = delete;
  ~cWorker() { fThread.join(); }

  /// Whether the work has ended, for which it waits a moment.
  bool WaitForEnd() {
    constexpr std::chrono::milliseconds kMoment(10);
    std::unique_lock lock(fMutex);
    return fHasEnded.wait_for(lock, kMoment, [this] { return fIsDone; });
  }
  /// After the end.
  std::exception_ptr GetFailure() const { return fFailure; }

 private:
  /// Hosts and other modules may have set floating-point modes, which new threads take over.
  void Run(const std::function<void(Photo::cWatch&)>& pWork, Photo::cWatch& pWatch) {
    try {
      const cFloatingPointScope scope;
      pWork(pWatch);
    } catch (...) {
      fFailure = std::current_exception();
    }
    const std::lock_guard lock(fMutex);
    fIsDone = true;
    fHasEnded.notify_one();
  }

  std::mutex fMutex;
  std::condition_variable fHasEnded;
  bool fIsDone = false;
  std::exception_ptr fFailure;
  std::thread fThread;  ///< The last, since it uses the others.
};

/// Raises quorvane.Cancelled when pProgress does not want more.
void CallProgress(const py::object& pProgress, double pShare) {
  if (pProgress.is_none()) return;
  if (pProgress(pShare).ptr() == Py_False) RaiseCancelled();
}

/// Lets Python handle signals, and reports progress.
void LookAround(const py::object& pProgress, double pShare, double& pShown) {
  const py::gil_scoped_acquire lock;
  if (PyErr_CheckSignals() != 0) throw py::error_already_set();
  if (pShare <= pShown) return;
  pShown = pShare;
  CallProgress(pProgress, pShare);
}

/// The failure of the work, or of what was called meanwhile. Errors of Python are in the latter.
struct sOutcome {
  std::exception_ptr fFailure;
  std::exception_ptr fRaised;
};

sOutcome Work(const py::object& pProgress, const std::function<void(Photo::cWatch&)>& pWork) {
  const py::gil_scoped_release unlock;
  Photo::cWatch watch;
  sOutcome outcome;
  double shown = 0.0;
  cWorker worker(pWork, watch);
  while (!worker.WaitForEnd()) {
    if (outcome.fRaised != nullptr) continue;
    try {
      LookAround(pProgress, watch.GetShare(), shown);
    } catch (...) {
      outcome.fRaised = std::current_exception();
      watch.Cancel();
    }
  }
  outcome.fFailure = worker.GetFailure();
  return outcome;
}

}  // namespace

void RunWatched(const py::object& pProgress, const std::function<void(Photo::cWatch&)>& pWork) {
  CallProgress(pProgress, 0.0);
  const sOutcome outcome = Work(pProgress, pWork);
  if (outcome.fRaised != nullptr) std::rethrow_exception(outcome.fRaised);
  if (outcome.fFailure != nullptr) std::rethrow_exception(outcome.fFailure);
  if (PyErr_CheckSignals() != 0) throw py::error_already_set();
  if (!pProgress.is_none()) pProgress(1.0);  // there is nothing left to stop
}

}  // namespace Python
