#include "cli/batch/MemoryBudget.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <utility>

#include "cli/batch/AvailableMemory.h"
#include "photo/MemoryEstimate.h"
#include "photo/base/Failure.h"

namespace Tool {
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

namespace {

/// Reads "4G", "500M", "1.5g" or bytes; units of 1024. Throws CLI::ValidationError.
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

}  // namespace

void AddMemoryLimit(CLI::App& pVerb, const std::string& pMeaning, std::int64_t& pLimit) {
  pVerb
      .add_option_function<std::string>(
          "--memory-limit", [&pLimit](const std::string& pText) { pLimit = ParseMemorySize(pText); },
          pMeaning)
      ->option_text("SIZE [80 % of what is free]");
}

std::int64_t ChooseMemoryLimit(std::int64_t pGiven) {
  constexpr double kShare = 0.8;
  if (pGiven > 0) return pGiven;
  return static_cast<std::int64_t>(kShare * static_cast<double>(GetAvailableMemory()));
}

std::string MemoryToText(std::int64_t pBytes) {
  constexpr double kMiB = 1 << 20;
  const double size = static_cast<double>(pBytes) / kMiB;
  return size < 1024.0 ? fmt::format("{:.0f} MiB", size) : fmt::format("{:.1f} GiB", size / 1024.0);
}

void CheckMemoryLimit(std::int64_t pBytes, std::int64_t pLimit) {
  if (pBytes <= pLimit) return;
  throw Photo::cFailure(Photo::eFailure::kProcessing,
                        "needs about " + MemoryToText(pBytes) + " of memory, and the limit is " +
                            MemoryToText(pLimit) + "; a larger --memory-limit lets it through");
}

Photo::tMemoryGate MakeMemoryGate(std::int64_t pBytes, std::int64_t pLimit) {
  return [=](std::int64_t pPixels) { CheckMemoryLimit(Photo::EstimateMemory(pPixels, pBytes), pLimit); };
}

}  // namespace Tool
