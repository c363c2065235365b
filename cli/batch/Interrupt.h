#pragma once

#include <csignal>

namespace Tool {

/// From now on SIGINT, SIGTERM and SIGHUP end the program at once, with exit code 130: the unfinished file is
/// removed and a line says how to go on. A signal that was ignored stays so. A write to a closed pipe or
/// beyond a limit of file sizes becomes a failed write, which is reported.
void CatchInterrupts();

/// In a worker process: SIGTERM removes the unfinished file and ends the process without a word, the others
/// are left to the parent, who gets them as well.
void CatchInterruptsInWorker();

/// Holds the signals back while it lives, so that things change together.
class cInterruptHold {
 public:
  cInterruptHold();
  cInterruptHold(const cInterruptHold&) = delete;
  cInterruptHold& operator=(const cInterruptHold&) = delete;
  ~cInterruptHold();

 private:
  sigset_t fFormer;
};

/// While it lives, a signal ends nothing but makes a handle readable: the program ends in an order of its
/// own. One lives at a time.
class cInterruptWatch {
 public:
  cInterruptWatch();  ///< Throws cFailure.
  cInterruptWatch(const cInterruptWatch&) = delete;
  cInterruptWatch& operator=(const cInterruptWatch&) = delete;
  ~cInterruptWatch();

  int GetHandle() const { return fPipe[0]; }
  bool HasCome() const;

 private:
  int fPipe[2];
};

}  // namespace Tool
