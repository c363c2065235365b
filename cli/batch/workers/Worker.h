#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace Tool {

/// A worker as its parent sees it.
struct sWorker {
  pid_t fProcess = -1;
  int fSocket = -1;  ///< For messages, see Message.h.
};

/// What a worker does for a task: gets its number, returns its answer.
using tTask = std::function<std::string(std::size_t)>;

/// What a worker does once, when it begins: gets the function that waits until so many bytes are granted, and
/// returns its task. Both run in the worker's process.
using tAskForMemory = std::function<void(std::int64_t)>;
using tTaskMaker = std::function<tTask(const tAskForMemory&)>;

/// Begins a process that takes tasks until its socket closes, and ends when the parent does. pOthers: sockets
/// that it must not hold open. A worker whose task throws ends with exit code 5. Throws cFailure.
sWorker StartWorker(const tTaskMaker& pMakeTask, const std::vector<int>& pOthers);

/// How many workers this process has file handles for; at least 1.
int CountPossibleWorkers();

}  // namespace Tool
