#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace Cli {

/// A worker as its parent sees it.
struct sWorker {
  pid_t fProcess = -1;
  int fSocket = -1;  ///< Keeps messages apart.
};

/// What a worker does for a task: gets its number, returns its answer.
using tTask = std::function<std::string(std::size_t)>;

/// What a worker does once, when it begins: gets the function that waits for leave to use so many bytes, and
/// returns its task. Both run in the worker's process.
using tAskForMemory = std::function<void(std::int64_t)>;
using tTaskMaker = std::function<tTask(const tAskForMemory&)>;

/// Begins a process that takes tasks until its socket closes, and ends when the parent does. pOthers: sockets
/// that it must not hold open. A worker whose task throws ends with exit code 5. Throws cFailure.
sWorker StartWorker(const tTaskMaker& pMakeTask, const std::vector<int>& pOthers);

/// What goes over the socket, a letter before the rest: to the worker a task's number, or leave to use the
/// memory that it asked for; from it that request in bytes, or the answer.
enum class eMessage : char { kTask = 'T', kLeave = 'L', kMemory = 'M', kAnswer = 'A' };

/// Returns false when nobody listens any more.
bool SendMessage(int pSocket, eMessage pKind, const std::string& pText);
/// Waits for one. Returns false when there will be none.
bool ReceiveMessage(int pSocket, eMessage& pKind, std::string& pText);

}  // namespace Cli
