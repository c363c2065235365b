#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "cli/batch/MemoryBudget.h"
#include "cli/batch/workers/Message.h"
#include "cli/batch/workers/TaskClock.h"
#include "cli/batch/workers/Worker.h"

namespace Tool {

/// How a task ended.
struct sTaskEnd {
  std::size_t fTask = 0;
  bool fIsAnswered = false;  ///< Otherwise its worker died, or took too long.
  std::string fText;         ///< The answer, or how the worker ended, in words.
};

/// What the workers of a pool have together, and each task has.
struct sPoolLimits {
  int fWorkers = 1;
  std::int64_t fMemory = 0;
  double fSeconds = 0.0;  ///< For a task, without its waiting for memory; 0 for no limit.
};

/// Worker processes that do numbered tasks and share a budget of memory. A worker that dies takes its task
/// with it, and another one takes its place. Needs this process to have one thread only.
class cWorkerPool {
 public:
  /// Begins the workers one by one, with the first tasks.
  cWorkerPool(const sPoolLimits& pLimits, tTaskMaker pMakeTask);
  cWorkerPool(const cWorkerPool&) = delete;
  cWorkerPool& operator=(const cWorkerPool&) = delete;
  ~cWorkerPool();  ///< Ends all workers within a second; tasks in work are given up.

  bool HasRoom() const;  ///< For another task.
  bool IsBusy() const;
  std::vector<std::size_t> GetTasksInWork() const;

  /// Where no further worker can be started, the pool makes do with those that it has: the task is not begun,
  /// and the reason returned. Throws cFailure when there are none.
  std::optional<std::string> Begin(std::size_t pTask);

  /// Waits until something happens, at most pMilliseconds (-1 for ever): a task ends, or pOther becomes
  /// readable.
  std::optional<sTaskEnd> Wait(int pOther, int pMilliseconds);

 private:
  struct sMember {
    sWorker fWorker;
    cMessageReader fReader;
    std::optional<std::size_t> fTask{};
    cTaskClock fClock{};
  };

  void AddMember();
  int GetPatience(int pMilliseconds) const;
  std::optional<sTaskEnd> Listen(std::size_t pMember, int pOther);
  std::optional<sTaskEnd> TakeDead(std::size_t pMember, int pOther);
  sTaskEnd GiveUp(std::size_t pMember);
  sMember Remove(std::size_t pMember);
  void GrantMemory();

  sPoolLimits fLimits;
  cMemoryBudget fBudget;
  tTaskMaker fMakeTask;
  std::vector<sMember> fMembers;
};

}  // namespace Tool
