#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "cli/OutputFormat.h"

namespace Cli {

/// Shares out memory to workers, in the order in which they ask.
class cMemoryBudget {
 public:
  explicit cMemoryBudget(std::int64_t pLimit) : fLeft(pLimit) {}

  /// pBytes: no more than the limit. A worker asks once until it gives back.
  void Ask(int pWorker, std::int64_t pBytes);
  /// Who has asked longest, if there is room; nobody overtakes. What it asked for is its own from now on.
  std::optional<int> GrantNext();
  /// What the worker holds or waits for; nothing where there is none.
  void GiveBack(int pWorker);

 private:
  std::int64_t fLeft;
  std::map<int, std::int64_t> fHeld;
  std::deque<std::pair<int, std::int64_t>> fWaiting;
};

/// Reads "4G", "500M", "1.5g" or bytes; units of 1024. Throws CLI::ValidationError.
std::int64_t ParseMemorySize(const std::string& pText);

/// "1.5 GiB".
std::string MemoryToText(std::int64_t pBytes);

/// What this process may use without pressing others out, in bytes: what the machine has available, or less
/// where a control group sets a limit.
std::int64_t GetAvailableMemory();

/// The most that a process holds while it reads, renders and writes a picture, in bytes; measured. Encoders
/// of some formats need more than the engine does.
std::int64_t EstimateMemory(std::int64_t pPixels, eOutputFormat pFormat, int pDepth);

/// Called once, for a picture whose size has just become known, before its pixels are; it may wait, or throw
/// the cFailure for a picture that is too large. What is made of the picture later passes without it.
using tMemoryGate = std::function<void(const std::string& pFile, std::int64_t pPixels)>;
void SetMemoryGate(tMemoryGate pGate);
void PassMemoryGate(const std::string& pFile, std::int64_t pPixels);
/// How long pictures have waited at the gate since this was last asked.
double TakeGateSeconds();

/// Throws the cFailure for a picture that alone needs more than the limit.
void CheckMemoryLimit(const std::string& pFile, std::int64_t pBytes, std::int64_t pLimit);

}  // namespace Cli
