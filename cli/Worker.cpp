#include "cli/Worker.h"

#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>

#include "cli/Failure.h"
#include "cli/Interrupt.h"

namespace Cli {
namespace {

/// The parent answers a request for memory with leave, when there is room; it goes away otherwise.
void WaitForMemory(int pSocket, std::int64_t pBytes) {
  eMessage kind = eMessage::kLeave;
  std::string text;
  const bool isAsked = SendMessage(pSocket, eMessage::kMemory, std::to_string(pBytes));
  if (!isAsked || !ReceiveMessage(pSocket, kind, text)) _exit(eExitCode_Interrupted);
}

void Serve(int pSocket, const tTaskMaker& pMakeTask) {
  const tTask task = pMakeTask([pSocket](std::int64_t pBytes) { WaitForMemory(pSocket, pBytes); });
  eMessage kind = eMessage::kTask;
  std::string text;
  while (ReceiveMessage(pSocket, kind, text)) {
    if (!SendMessage(pSocket, eMessage::kAnswer, task(std::stoull(text)))) return;
  }
}

/// The worker's whole life. It ends without what the parent's exit would do.
[[noreturn]] void Live(int pSocket, pid_t pParent, const tTaskMaker& pMakeTask) {
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
  throw cFailure(eExitCode_Processing, "", std::string("no worker can be started: ") + std::strerror(errno));
}

}  // namespace

sWorker StartWorker(const tTaskMaker& pMakeTask, const std::vector<int>& pOthers) {
  int sockets[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, sockets) != 0) RefuseToStart();
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
    Live(sockets[1], parent, pMakeTask);
  }
  close(sockets[1]);
  if (child < 0) {
    close(sockets[0]);
    RefuseToStart();
  }
  return {child, sockets[0]};
}

bool SendMessage(int pSocket, eMessage pKind, const std::string& pText) {
  const std::string message = static_cast<char>(pKind) + pText;
  ssize_t sent = -1;
  do {
    sent = send(pSocket, message.data(), message.size(), MSG_NOSIGNAL);
  } while (sent < 0 && errno == EINTR);
  return sent == static_cast<ssize_t>(message.size());
}

bool ReceiveMessage(int pSocket, eMessage& pKind, std::string& pText) {
  const auto receive = [&](char* pTo, std::size_t pSize, int pFlags) {
    ssize_t size = -1;
    do {
      size = recv(pSocket, pTo, pSize, pFlags);
    } while (size < 0 && errno == EINTR);
    return size;
  };
  char first = 0;
  const ssize_t size = receive(&first, 1, MSG_PEEK | MSG_TRUNC);  // how long it is
  if (size <= 0) return false;
  std::string message(static_cast<std::size_t>(size), '\0');
  if (receive(message.data(), message.size(), 0) != size) return false;
  pKind = static_cast<eMessage>(first);
  pText = message.substr(1);
  return true;
}

}  // namespace Cli
