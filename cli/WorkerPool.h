#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/MemoryBudget.h"
#include "cli/Worker.h"

namespace Cli {

/// How a task ended.
struct sTaskEnd {
  std::size_t fTask = 0;
  bool fIsAnswered = false;  ///< Otherwise its worker died.
  std::string fText;         ///< The answer, or how the worker died, in words.
};

/// Worker processes that do numbered tasks and share a budget of memory. A worker that dies takes its task
/// with it, and another one takes its place. Needs this process to have one thread only.
class cWorkerPool {
 public:
  /// Begins the workers one by one, with the first tasks.
  cWorkerPool(int pWorkers, std::int64_t pMemory, tTaskMaker pMakeTask);
  cWorkerPool(const cWorkerPool&) = delete;
  cWorkerPool& operator=(const cWorkerPool&) = delete;
  ~cWorkerPool();  ///< Ends all workers within a second; tasks in work are given up.

  bool HasRoom() const;  ///< For another task.
  bool IsBusy() const;
  std::vector<std::size_t> GetTasksInWork() const;
  void Begin(std::size_t pTask);  ///< Throws cFailure when no worker can be started.

  /// Waits until something happens, at most pMilliseconds (-1 for ever): a task ends, or pOther becomes
  /// readable.
  std::optional<sTaskEnd> Wait(int pOther, int pMilliseconds);

 private:
  struct sMember {
    sWorker fWorker;
    std::optional<std::size_t> fTask;
  };

  std::optional<sTaskEnd> Listen(std::size_t pMember);
  std::optional<sTaskEnd> Bury(std::size_t pMember);
  void GrantMemory();

  std::size_t fMost;
  cMemoryBudget fBudget;
  tTaskMaker fMakeTask;
  std::vector<sMember> fMembers;
};

}  // namespace Cli
