#include "cli/batch/Interrupt.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "cli/batch/ExitCode.h"
#include "photo/base/Failure.h"
#include "photo/io/UnfinishedFile.h"

namespace Tool {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr char kLastWords[] =
    "quorvane: interrupted; the result was not written, and what stood in its place still does: run the "
    "command again\n";

// What the handler needs; changed only while the signals are held back.
int gWatchHandle = -1;
bool gIsWorker = false;

extern "C" void OnInterrupt(int /*pSignal*/) {
  const int error = errno;
  if (gWatchHandle >= 0) {
    [[maybe_unused]] const ssize_t written = write(gWatchHandle, "", 1);
    errno = error;
    return;
  }
  const char* const unfinished = Photo::TakeUnfinishedFile();
  if (*unfinished != '\0') unlink(unfinished);
  if (!gIsWorker) {
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, kLastWords, sizeof kLastWords - 1);
  }
  _exit(eExitCode_Interrupted);
}

void Catch(int pSignal) {
  struct sigaction action = {};
  action.sa_handler = OnInterrupt;
  sigaction(pSignal, &action, nullptr);
}

}  // namespace

void CatchInterrupts() {
  for (const int signal : kSignals) {
    struct sigaction present = {};
    sigaction(signal, nullptr, &present);
    if (present.sa_handler != SIG_IGN) Catch(signal);
  }
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);
}

void CatchInterruptsInWorker() {
  gIsWorker = true;
  gWatchHandle = -1;
  std::signal(SIGINT, SIG_IGN);
  std::signal(SIGHUP, SIG_IGN);
  Catch(SIGTERM);
}

cInterruptHold::cInterruptHold() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : kSignals) sigaddset(&set, signal);
  pthread_sigmask(SIG_BLOCK, &set, &fFormer);
}

cInterruptHold::~cInterruptHold() {
  pthread_sigmask(SIG_SETMASK, &fFormer, nullptr);
}

cInterruptWatch::cInterruptWatch() {
  if (pipe2(fPipe, O_CLOEXEC | O_NONBLOCK) != 0) {
    throw Photo::cFailure(Photo::eFailure::kProcessing, "",
                          std::string("no pipe is available: ") + std::strerror(errno));
  }
  const cInterruptHold hold;
  gWatchHandle = fPipe[1];
}

cInterruptWatch::~cInterruptWatch() {
  const cInterruptHold hold;
  gWatchHandle = -1;
  close(fPipe[0]);
  close(fPipe[1]);
}

bool cInterruptWatch::HasCome() const {
  pollfd handle = {fPipe[0], POLLIN, 0};
  return poll(&handle, 1, 0) > 0;
}

}  // namespace Tool
