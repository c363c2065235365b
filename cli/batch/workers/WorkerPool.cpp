#include "cli/batch/workers/WorkerPool.h"

#include <fmt/format.h>

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstring>
#include <limits>
#include <thread>
#include <utility>

#include "cli/batch/ExitCode.h"
#include "photo/base/Failure.h"

namespace Tool {
namespace {

using tClock = cTaskClock::tTime;

/// Waits for the end of a process, at most so long: one that hangs in the system does not even obey SIGKILL.
std::optional<int> WaitForEnd(pid_t pProcess, tClock::time_point pLatest) {
  for (;;) {
    int status = 0;
    if (waitpid(pProcess, &status, WNOHANG) != 0) return status;
    if (tClock::now() >= pLatest) return std::nullopt;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void Kill(pid_t pProcess) {
  kill(pProcess, SIGKILL);
  WaitForEnd(pProcess, tClock::now() + std::chrono::seconds(1));
}

/// A signal to the whole group reaches workers and this process one after the other: until ours has come, a
/// worker that was asked to end looks like one that failed.
void WaitForOwnSignal(int pOther) {
  constexpr int kMilliseconds = 2000;
  pollfd handle = {pOther, POLLIN, 0};
  poll(&handle, 1, kMilliseconds);
}

std::string DescribeEnd(int pStatus) {
  if (WIFEXITED(pStatus) && WEXITSTATUS(pStatus) == eExitCode_Interrupted)
    return "its worker process was asked to end (SIGTERM)";
  if (!WIFSIGNALED(pStatus))
    return "its worker process ended (code " + std::to_string(WEXITSTATUS(pStatus)) + ")";
  const int signal = WTERMSIG(pStatus);
  if (signal == SIGKILL) {
    return "its worker process was killed; if memory ran out, a smaller --memory-limit or -j helps";
  }
  return std::string("its worker process crashed (") + strsignal(signal) + "); the file may be damaged";
}

std::string DescribeLateness(double pSeconds) {
  return fmt::format("took longer than --timeout {:g} second{}; a larger --timeout gives it more time",
                     pSeconds, pSeconds == 1.0 ? "" : "s");
}

tClock::duration ToDuration(double pSeconds) {
  return std::chrono::duration_cast<tClock::duration>(std::chrono::duration<double>(pSeconds));
}

}  // namespace

cWorkerPool::cWorkerPool(const sPoolLimits& pLimits, tTaskMaker pMakeTask)
    : fLimits(pLimits), fBudget(pLimits.fMemory), fMakeTask(std::move(pMakeTask)) {}

cWorkerPool::~cWorkerPool() {
  for (const sMember& member : fMembers) {
    close(member.fWorker.fSocket);  // an idle one ends by that
    if (member.fTask.has_value()) kill(member.fWorker.fProcess, SIGTERM);
  }
  const auto latest = tClock::now() + std::chrono::milliseconds(500);
  for (const sMember& member : fMembers) {
    if (!WaitForEnd(member.fWorker.fProcess, latest)) Kill(member.fWorker.fProcess);
  }
}

bool cWorkerPool::HasRoom() const {
  return fMembers.size() < static_cast<std::size_t>(fLimits.fWorkers) ||
         std::any_of(fMembers.begin(), fMembers.end(),
                     [](const sMember& pMember) { return !pMember.fTask.has_value(); });
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

void cWorkerPool::AddMember() {
  std::vector<int> sockets;
  for (const sMember& member : fMembers) sockets.push_back(member.fWorker.fSocket);
  const sWorker worker = StartWorker(fMakeTask, sockets);
  fMembers.push_back({worker, cMessageReader(worker.fSocket)});
}

std::optional<std::string> cWorkerPool::Begin(std::size_t pTask) {
  const auto isIdle = [](const sMember& pMember) { return !pMember.fTask.has_value(); };
  auto idle = std::find_if(fMembers.begin(), fMembers.end(), isIdle);
  if (idle == fMembers.end()) {
    try {
      AddMember();
    } catch (const Photo::cFailure& failure) {
      if (fMembers.empty()) throw;
      fLimits.fWorkers = static_cast<int>(fMembers.size());
      return failure.what();
    }
    idle = fMembers.end() - 1;
  }
  idle->fTask = pTask;
  if (fLimits.fSeconds > 0.0) idle->fClock.Start(ToDuration(fLimits.fSeconds));
  SendMessage(idle->fWorker.fSocket, eMessage::kTask, std::to_string(pTask));  // a dead one is noticed later
  return std::nullopt;
}

/// Not beyond the time at which the first task takes too long.
int cWorkerPool::GetPatience(int pMilliseconds) const {
  std::int64_t patience = pMilliseconds < 0 ? std::numeric_limits<int>::max() : pMilliseconds;
  for (const sMember& member : fMembers) {
    const auto end = member.fClock.GetEnd();
    if (!end) continue;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*end - tClock::now()).count();
    patience = std::min<std::int64_t>(patience, std::max<std::int64_t>(left, 0));
  }
  return patience == std::numeric_limits<int>::max() ? -1 : static_cast<int>(patience);
}

std::optional<sTaskEnd> cWorkerPool::Wait(int pOther, int pMilliseconds) {
  std::vector<pollfd> handles;
  for (const sMember& member : fMembers) handles.push_back({member.fWorker.fSocket, POLLIN, 0});
  handles.push_back({pOther, POLLIN, 0});
  poll(handles.data(), handles.size(), GetPatience(pMilliseconds));
  if (handles.back().revents != 0) return std::nullopt;
  for (std::size_t i = 0; i < fMembers.size(); ++i) {
    if (handles[i].revents == 0 && fMembers[i].fClock.IsOver()) return GiveUp(i);
  }
  for (std::size_t i = 0; i < fMembers.size(); ++i) {
    if (handles[i].revents != 0) return Listen(i, pOther);  // the others at the next call
  }
  return std::nullopt;
}

std::optional<sTaskEnd> cWorkerPool::Listen(std::size_t pMember, int pOther) {
  sMember& member = fMembers[pMember];
  if (!member.fReader.Read()) return TakeDead(pMember, pOther);
  const std::optional<sMessage> message = member.fReader.Take();
  if (!message) return std::nullopt;
  const bool isAnswer = message->fKind == eMessage::kAnswer;
  member.fClock.Stop();
  if (isAnswer) fBudget.GiveBack(member.fWorker.fSocket);
  if (!isAnswer) fBudget.Ask(member.fWorker.fSocket, std::stoll(message->fText));
  GrantMemory();
  if (!isAnswer) return std::nullopt;
  return sTaskEnd{*std::exchange(member.fTask, std::nullopt), true, message->fText};
}

cWorkerPool::sMember cWorkerPool::Remove(std::size_t pMember) {
  sMember member = fMembers[pMember];
  fMembers.erase(fMembers.begin() + static_cast<std::ptrdiff_t>(pMember));
  fBudget.GiveBack(member.fWorker.fSocket);
  close(member.fWorker.fSocket);
  GrantMemory();
  return member;
}

/// Removes a worker that has closed its socket, or sent what is no message.
std::optional<sTaskEnd> cWorkerPool::TakeDead(std::size_t pMember, int pOther) {
  const sMember member = Remove(pMember);
  const auto latest = tClock::now() + std::chrono::seconds(1);
  std::optional<int> status = WaitForEnd(member.fWorker.fProcess, latest);
  if (!status) Kill(member.fWorker.fProcess);
  if (!member.fTask.has_value()) return std::nullopt;
  if (!status) return sTaskEnd{*member.fTask, false, "its worker process went wrong, and was killed"};
  if (WIFEXITED(*status) && WEXITSTATUS(*status) == eExitCode_Interrupted) WaitForOwnSignal(pOther);
  return sTaskEnd{*member.fTask, false, DescribeEnd(*status)};
}

/// Kills a worker that takes too long.
sTaskEnd cWorkerPool::GiveUp(std::size_t pMember) {
  const sMember member = Remove(pMember);
  Kill(member.fWorker.fProcess);
  return {*member.fTask, false, DescribeLateness(fLimits.fSeconds)};
}

void cWorkerPool::GrantMemory() {
  while (const std::optional<int> next = fBudget.GrantNext()) {
    SendMessage(*next, eMessage::kGranted, "");
    if (fLimits.fSeconds <= 0.0) continue;
    const auto member = std::find_if(fMembers.begin(), fMembers.end(), [&](const sMember& pMember) {
      return pMember.fWorker.fSocket == *next;
    });
    if (member != fMembers.end()) member->fClock.Resume();
  }
}

}  // namespace Tool
