#include "bench/Usage.h"

#include <fcntl.h>
#include <malloc.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>

namespace Bench {
namespace {

/// A figure in KiB of a file under /proc, in bytes.
double ProcBytes(const char* pFile, const std::string& pName) {
  std::ifstream file(pFile);
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(pName + ":")) return 1024.0 * std::strtod(line.c_str() + pName.size() + 1, nullptr);
  }
  return 0.0;
}

}  // namespace

sProcessorTime ProcessorTime() {
  timespec time = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  rusage usage = {};
  getrusage(RUSAGE_SELF, &usage);
  return {static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec),
          static_cast<double>(usage.ru_stime.tv_sec) + 1e-6 * static_cast<double>(usage.ru_stime.tv_usec)};
}

double RestartPeak() {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << "5";
  return ProcBytes("/proc/self/status", "VmRSS");
}

void WarmMemory(double pBytes) {
  const auto bytes = static_cast<std::size_t>(std::min(pBytes, 0.9 * AvailableBytes()));
  void* const block = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (block == MAP_FAILED) return;
  madvise(block, bytes, MADV_HUGEPAGE);
  for (std::size_t at = 0; at < bytes; at += 4096) static_cast<volatile char*>(block)[at] = 1;
  munmap(block, bytes);
}

double PeakBytes() {
  return ProcBytes("/proc/self/status", "VmHWM");
}

double AvailableBytes() {
  return ProcBytes("/proc/meminfo", "MemAvailable");
}

double Median(std::vector<double> pValues) {
  if (pValues.empty()) return 0.0;
  std::sort(pValues.begin(), pValues.end());
  const std::size_t middle = pValues.size() / 2;
  return pValues.size() % 2 != 0 ? pValues[middle] : 0.5 * (pValues[middle - 1] + pValues[middle]);
}

cSilence::cSilence() : fKept(dup(STDERR_FILENO)) {
  const int nowhere = open("/dev/null", O_WRONLY);
  dup2(nowhere, STDERR_FILENO);
  close(nowhere);
}

cSilence::~cSilence() {
  dup2(fKept, STDERR_FILENO);
  close(fKept);
}

}  // namespace Bench
