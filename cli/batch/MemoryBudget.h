#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "photo/encode/OutputFormat.h"

namespace CLI {
class App;
}

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

/// Adds --memory-limit, in bytes; pLimit stays 0 where it is not given.
void AddMemoryLimit(CLI::App& pVerb, const std::string& pMeaning, std::int64_t& pLimit);

/// The limit that was given, or for 0 a share of what is available.
std::int64_t ChooseMemoryLimit(std::int64_t pGiven);

/// "1.5 GiB".
std::string MemoryToText(std::int64_t pBytes);

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

/// A gate for the next picture alone, which waits for no others: with pBytes a pixel it has to fit into
/// pLimit (see ChooseMemoryLimit).
void SetSingleMemoryGate(std::int64_t pBytes, std::int64_t pLimit);

}  // namespace Cli
