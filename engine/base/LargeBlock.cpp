#include "engine/base/LargeBlock.h"

#include <cstdlib>

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#endif

namespace TmEngine {
namespace {

constexpr std::size_t kLargeBytes = std::size_t{1} << 22;

/// Whole pages of the block only: its ends may belong to others.
void AdviseLargePages([[maybe_unused]] void* pBlock, [[maybe_unused]] std::size_t pBytes) {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto start = reinterpret_cast<std::uintptr_t>(pBlock);
  const std::uintptr_t first = (start + page - 1) / page * page;
  const std::uintptr_t end = (start + pBytes) / page * page;
  madvise(static_cast<char*>(pBlock) + (first - start), end - first, MADV_HUGEPAGE);  // a hint: may fail
#endif
}

}  // namespace

void* AllocLargeBlock(std::size_t pBytes) {
  void* const block = std::malloc(pBytes);
  if (block != nullptr && pBytes >= kLargeBytes) AdviseLargePages(block, pBytes);
  return block;
}

}  // namespace TmEngine
