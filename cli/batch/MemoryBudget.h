#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "photo/picture/MemoryGate.h"

namespace CLI {
class App;
}

namespace Tool {

/// Shares out memory to workers, in the order in which they ask.
class cMemoryBudget {
 public:
  explicit cMemoryBudget(std::int64_t pLimit) : fLeft(pLimit) {}

  /// pBytes: no more than the limit. A worker asks once until it gives back.
  void Ask(int pWorker, std::int64_t pBytes);
  /// Grants the oldest request if it fits (first come, first served) and returns its worker.
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

/// Throws the cFailure for a picture that alone needs more than the limit.
void CheckMemoryLimit(std::int64_t pBytes, std::int64_t pLimit);

/// A gate for a picture that waits for no others: with pBytes per pixel it has to fit into pLimit (see
/// ChooseMemoryLimit).
Photo::tMemoryGate MakeMemoryGate(std::int64_t pBytes, std::int64_t pLimit);

}  // namespace Tool
