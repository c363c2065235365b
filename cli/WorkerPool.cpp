#include "cli/WorkerPool.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <thread>
#include <utility>

namespace Cli {
namespace {

int WaitForEnd(pid_t pProcess) {
  int status = 0;
  while (waitpid(pProcess, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

std::string TellEnd(int pStatus) {
  if (!WIFSIGNALED(pStatus))
    return "its worker process ended (code " + std::to_string(WEXITSTATUS(pStatus)) + ")";
  const int signal = WTERMSIG(pStatus);
  if (signal == SIGKILL) {
    return "its worker process was killed; if memory ran out, a smaller --memory-limit or -j helps";
  }
  return std::string("its worker process crashed (") + strsignal(signal) + "); the file may be damaged";
}

}  // namespace

cWorkerPool::cWorkerPool(int pWorkers, std::int64_t pMemory, tTaskMaker pMakeTask)
    : fMost(static_cast<std::size_t>(pWorkers)), fBudget(pMemory), fMakeTask(std::move(pMakeTask)) {}

cWorkerPool::~cWorkerPool() {
  using tClock = std::chrono::steady_clock;
  for (const sMember& member : fMembers) {
    close(member.fWorker.fSocket);  // an idle one ends by that
    if (member.fTask.has_value()) kill(member.fWorker.fProcess, SIGTERM);
  }
  const auto latest = tClock::now() + std::chrono::milliseconds(500);
  for (const sMember& member : fMembers) {
    bool isGone = false;
    while (!(isGone = waitpid(member.fWorker.fProcess, nullptr, WNOHANG) != 0) && tClock::now() < latest) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    if (isGone) continue;
    kill(member.fWorker.fProcess, SIGKILL);
    WaitForEnd(member.fWorker.fProcess);
  }
}

bool cWorkerPool::HasRoom() const {
  return fMembers.size() < fMost || std::any_of(fMembers.begin(), fMembers.end(), [](const sMember& pMember) {
           return !pMember.fTask.has_value();
         });
}

bool cWorkerPool::IsBusy() const {
  return !GetTasksInWork().empty();
}

std::vector<std::size_t> cWorkerPool::GetTasksInWork() const {
  std::vector<std::size_t> tasks;
  for (const sMember& member : fMembers) {
    if (member.fTask.has_value()) tasks.push_back(*member.fTask);
  }
  return tasks;
}

void cWorkerPool::Begin(std::size_t pTask) {
  auto idle = std::find_if(fMembers.begin(), fMembers.end(),
                           [](const sMember& pMember) { return !pMember.fTask.has_value(); });
  if (idle == fMembers.end()) {
    std::vector<int> sockets;
    for (const sMember& member : fMembers) sockets.push_back(member.fWorker.fSocket);
    fMembers.push_back({StartWorker(fMakeTask, sockets), std::nullopt});
    idle = fMembers.end() - 1;
  }
  idle->fTask = pTask;
  SendMessage(idle->fWorker.fSocket, eMessage::kTask, std::to_string(pTask));  // a dead one is noticed later
}

std::optional<sTaskEnd> cWorkerPool::Wait(int pOther, int pMilliseconds) {
  std::vector<pollfd> handles;
  for (const sMember& member : fMembers) handles.push_back({member.fWorker.fSocket, POLLIN, 0});
  handles.push_back({pOther, POLLIN, 0});
  if (poll(handles.data(), handles.size(), pMilliseconds) <= 0 || handles.back().revents != 0) {
    return std::nullopt;
  }
  for (std::size_t i = 0; i < fMembers.size(); ++i) {
    if (handles[i].revents != 0) return Listen(i);  // the others at the next call
  }
  return std::nullopt;
}

std::optional<sTaskEnd> cWorkerPool::Listen(std::size_t pMember) {
  sMember& member = fMembers[pMember];
  const int socket = member.fWorker.fSocket;
  eMessage kind = eMessage::kAnswer;
  std::string text;
  if (!ReceiveMessage(socket, kind, text)) return Bury(pMember);
  if (kind == eMessage::kMemory) {
    fBudget.Ask(socket, std::stoll(text));
    GrantMemory();
    return std::nullopt;
  }
  fBudget.GiveBack(socket);
  GrantMemory();
  return sTaskEnd{*std::exchange(member.fTask, std::nullopt), true, text};
}

std::optional<sTaskEnd> cWorkerPool::Bury(std::size_t pMember) {
  const sMember member = fMembers[pMember];
  fMembers.erase(fMembers.begin() + static_cast<std::ptrdiff_t>(pMember));
  fBudget.GiveBack(member.fWorker.fSocket);
  GrantMemory();
  close(member.fWorker.fSocket);
  const std::string words = TellEnd(WaitForEnd(member.fWorker.fProcess));
  if (!member.fTask.has_value()) return std::nullopt;
  return sTaskEnd{*member.fTask, false, words};
}

void cWorkerPool::GrantMemory() {
  while (const std::optional<int> next = fBudget.GrantNext()) SendMessage(*next, eMessage::kLeave, "");
}

}  // namespace Cli
