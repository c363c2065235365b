#include "cli/batch/workers/Worker.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iterator>

#include "cli/batch/ExitCode.h"
#include "cli/batch/Interrupt.h"
#include "cli/batch/workers/Message.h"
#include "photo/base/Failure.h"

namespace Tool {
namespace {

/// The parent grants a request for memory as soon as there is room. If it ends before, so does its worker.
void WaitForMemory(int pSocket, cMessageReader& pReader, std::int64_t pBytes) {
  const bool isAsked = SendMessage(pSocket, eMessage::kMemory, std::to_string(pBytes));
  if (!isAsked || !pReader.Wait()) _exit(eExitCode_Interrupted);
}

void Serve(int pSocket, const tTaskMaker& pMakeTask) {
  cMessageReader reader(pSocket);
  const tTask task = pMakeTask([&](std::int64_t pBytes) { WaitForMemory(pSocket, reader, pBytes); });
  while (const std::optional<sMessage> message = reader.Wait()) {
    if (!SendMessage(pSocket, eMessage::kAnswer, task(std::stoull(message->fText)))) return;
  }
}

/// All that a worker does. It ends by _exit: buffers and handlers that it has from its parent are the
/// parent's to flush and run.
[[noreturn]] void RunWorker(int pSocket, pid_t pParent, const tTaskMaker& pMakeTask) {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != pParent) _exit(eExitCode_Interrupted);
  try {
    Serve(pSocket, pMakeTask);
  } catch (const std::exception&) {
    _exit(eExitCode_Processing);
  }
  _exit(eExitCode_Done);
}

[[noreturn]] void RefuseToStart() {
  throw Photo::cFailure(Photo::eFailure::kProcessing, "",
                        std::string("no worker can be started: ") + std::strerror(errno));
}

}  // namespace

sWorker StartWorker(const tTaskMaker& pMakeTask, const std::vector<int>& pOthers) {
  int sockets[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0) RefuseToStart();
  const pid_t parent = getpid();
  pid_t child = -1;
  {
    const cInterruptHold hold;  // until the child has handlers of its own
    child = fork();
    if (child == 0) CatchInterruptsInWorker();
  }
  if (child == 0) {
    close(sockets[0]);
    for (const int other : pOthers) close(other);
    RunWorker(sockets[1], parent, pMakeTask);
  }
  close(sockets[1]);
  if (child < 0) {
    close(sockets[0]);
    RefuseToStart();
  }
  return {child, sockets[0]};
}

int CountPossibleWorkers() {
  constexpr std::int64_t kSpare = 8;  // for what is opened for a moment, and for the signals' pipe
  constexpr rlim_t kMany = 1 << 20;
  rlimit limit = {};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) limit.rlim_cur = kMany;
  std::error_code error;
  const auto open = std::distance(std::filesystem::directory_iterator("/proc/self/fd", error), {});
  const auto most = static_cast<std::int64_t>(std::min(limit.rlim_cur, kMany));
  return static_cast<int>(std::max<std::int64_t>(most - open - kSpare, 1));
}

}  // namespace Tool
