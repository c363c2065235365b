#include "cli/MemoryBudget.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>
#include <utility>

#include "cli/Failure.h"

namespace Cli {
namespace {

constexpr std::int64_t kUnlimited = std::numeric_limits<std::int64_t>::max();

double gGateSeconds = 0.0;

tMemoryGate& Gate() {
  static tMemoryGate gate;
  return gate;
}

/// The number behind a word, "MemAvailable: 123 kB"; pElse where there is none.
std::int64_t ReadNumber(const std::string& pFile, const std::string& pWord, std::int64_t pElse) {
  std::ifstream stream(pFile);
  std::int64_t number = 0;
  if (pWord.empty()) return stream >> number ? number : pElse;
  for (std::string word; stream >> word;) {
    if (word == pWord) return stream >> number ? number : pElse;
  }
  return pElse;
}

/// What one control group leaves; what it keeps of files only can be had back.
std::int64_t RoomInGroup(const std::string& pGroup) {
  const std::int64_t most = ReadNumber(pGroup + "/memory.max", "", kUnlimited);
  if (most == kUnlimited) return kUnlimited;
  const std::int64_t used = ReadNumber(pGroup + "/memory.current", "", 0);
  return most - used + ReadNumber(pGroup + "/memory.stat", "inactive_file", 0);
}

/// A limit may be set on the process's own group or on any above it.
std::int64_t RoomInGroups() {
  std::ifstream stream("/proc/self/cgroup");
  std::int64_t room = kUnlimited;
  for (std::string line; std::getline(stream, line);) {
    if (!line.starts_with("0::/")) continue;
    for (std::filesystem::path group = line.substr(3);; group = group.parent_path()) {
      room = std::min(room, RoomInGroup("/sys/fs/cgroup" + group.string()));
      if (!group.has_relative_path()) break;
    }
  }
  return room;
}

}  // namespace

void cMemoryBudget::Ask(int pWorker, std::int64_t pBytes) {
  fWaiting.emplace_back(pWorker, pBytes);
}

std::optional<int> cMemoryBudget::GrantNext() {
  if (fWaiting.empty() || fWaiting.front().second > fLeft) return std::nullopt;
  const auto next = fWaiting.front();
  fWaiting.pop_front();
  fLeft -= next.second;
  fHeld.insert(next);
  return next.first;
}

void cMemoryBudget::GiveBack(int pWorker) {
  std::erase_if(fWaiting, [&](const auto& pAsked) { return pAsked.first == pWorker; });
  const auto held = fHeld.find(pWorker);
  if (held == fHeld.end()) return;
  fLeft += held->second;
  fHeld.erase(held);
}

std::int64_t ParseMemorySize(const std::string& pText) {
  constexpr char kUnits[] = "kmgt";
  double size = 0.0;
  const char* const end = pText.data() + pText.size();
  const auto number = std::from_chars(pText.data(), end, size);
  std::string unit(number.ptr, end);
  std::transform(unit.begin(), unit.end(), unit.begin(), [](char pC) { return static_cast<char>(pC | 32); });
  const std::size_t power = unit.size() == 1 ? std::string(kUnits).find(unit) : std::string::npos;
  for (std::size_t i = 0; power != std::string::npos && i <= power; ++i) size *= 1024.0;
  const bool isKnown = unit.empty() || power != std::string::npos;
  if (number.ec != std::errc() || !isKnown || !(size >= 1.0 && size < 1e18)) {
    throw CLI::ValidationError("--memory-limit", pText + " is not a size such as 4G, 500M or bytes");
  }
  return static_cast<std::int64_t>(size);
}

std::string MemoryToText(std::int64_t pBytes) {
  constexpr double kMiB = 1 << 20;
  const double size = static_cast<double>(pBytes) / kMiB;
  char text[32];
  std::snprintf(text, sizeof text, size < 1024.0 ? "%.0f MiB" : "%.1f GiB",
                size < 1024.0 ? size : size / 1024.0);
  return text;
}

std::int64_t GetAvailableMemory() {
  const std::int64_t machine = ReadNumber("/proc/meminfo", "MemAvailable:", kUnlimited / 1024) * 1024;
  return std::max<std::int64_t>(std::min(machine, RoomInGroups()), 1);
}

std::int64_t EstimateMemory(std::int64_t pPixels, eOutputFormat pFormat, int pDepth) {
  constexpr std::int64_t kProcess = std::int64_t{64} << 20;
  const bool isDeepAvif = pFormat == eOutputFormat::kAvif && pDepth > 8;
  const std::int64_t bytes = pFormat == eOutputFormat::kJxl ? 110 : isDeepAvif ? 66 : 44;  // a pixel
  return pPixels > (kUnlimited - kProcess) / bytes ? kUnlimited : kProcess + pPixels * bytes;
}

void SetMemoryGate(tMemoryGate pGate) {
  Gate() = std::move(pGate);
}

void PassMemoryGate(const std::string& pFile, std::int64_t pPixels) {
  const tMemoryGate gate = std::exchange(Gate(), nullptr);
  if (gate == nullptr) return;
  const auto start = std::chrono::steady_clock::now();
  gate(pFile, pPixels);
  gGateSeconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double TakeGateSeconds() {
  return std::exchange(gGateSeconds, 0.0);
}

void CheckMemoryLimit(const std::string& pFile, std::int64_t pBytes, std::int64_t pLimit) {
  if (pBytes <= pLimit) return;
  throw cFailure(eExitCode_Processing, pFile,
                 "needs about " + MemoryToText(pBytes) + " of memory, and the limit is " +
                     MemoryToText(pLimit) + "; a larger --memory-limit lets it through");
}

}  // namespace Cli
