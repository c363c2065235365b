#pragma once

#include <unistd.h>

#include <cstdio>
#include <string>

/// Takes what the process writes to standard error while it lives. One at a time.
class cStderrCapture {
 public:
  cStderrCapture() : fFile(std::tmpfile()) {
    std::fflush(stderr);
    fSaved = dup(STDERR_FILENO);
    dup2(fileno(fFile), STDERR_FILENO);
  }
  cStderrCapture(const cStderrCapture&) = delete;
  cStderrCapture& operator=(const cStderrCapture&) = delete;
  ~cStderrCapture() {
    Restore();
    std::fclose(fFile);
  }

  /// Ends the capture and returns the text.
  std::string Text() {
    Restore();
    std::string text;
    std::rewind(fFile);
    for (int c = std::fgetc(fFile); c != EOF; c = std::fgetc(fFile)) text.push_back(static_cast<char>(c));
    return text;
  }

 private:
  void Restore() {
    if (fSaved < 0) return;
    std::fflush(stderr);
    dup2(fSaved, STDERR_FILENO);
    close(fSaved);
    fSaved = -1;
  }

  std::FILE* fFile;
  int fSaved;
};
