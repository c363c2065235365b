#include "engine/base/cLargeRegion.h"

#include <utility>

#if defined(TM_WATCHES_ADDRESSES)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(pStart, pBytes) static_cast<void>(0)
#define ASAN_UNPOISON_MEMORY_REGION(pStart, pBytes) static_cast<void>(0)
#endif

#if defined(__linux__)
#include <sys/mman.h>

#include <cstdint>
#endif

namespace TmEngine {
namespace {

constexpr std::size_t kLargePage = std::size_t{1} << 21;
constexpr std::size_t kLeastBytes = 2 * kLargePage;
constexpr std::size_t kMostBytes = 64 * kLargePage;  // larger blocks do well on their own

// The address sanitizer watches blocks from malloc only; others are announced to it.
void Forbid([[maybe_unused]] char* pStart, [[maybe_unused]] std::size_t pBytes) {
  ASAN_POISON_MEMORY_REGION(pStart, pBytes);
}

void Permit([[maybe_unused]] char* pStart, [[maybe_unused]] std::size_t pBytes) {
  ASAN_UNPOISON_MEMORY_REGION(pStart, pBytes);
}

#if defined(__linux__) && defined(MADV_HUGEPAGE)

/// Whole large pages; what was taken to find their start goes back at once.
char* MapLargePages(std::size_t pBytes) {
  void* const mapped =
      mmap(nullptr, pBytes + kLargePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) return nullptr;
  char* const first = static_cast<char*>(mapped);
  const std::size_t lead = (kLargePage - reinterpret_cast<std::uintptr_t>(mapped) % kLargePage) % kLargePage;
  if (lead > 0) munmap(first, lead);
  munmap(first + lead + pBytes, kLargePage - lead);
  madvise(first + lead, pBytes, MADV_HUGEPAGE);  // a hint: may fail
  Forbid(first + lead, pBytes);
  return first + lead;
}

void Unmap(char* pStart, std::size_t pBytes) {
  Permit(pStart, pBytes);
  munmap(pStart, pBytes);
}

#else

char* MapLargePages(std::size_t) {
  return nullptr;
}

void Unmap(char*, std::size_t) {}

#endif

}  // namespace

cLargeRegion::cLargeRegion(std::size_t pBytes) {
  if (pBytes < kLeastBytes || pBytes > kMostBytes) return;
  const std::size_t bytes = (pBytes + kLargePage - 1) / kLargePage * kLargePage;
  fStart = MapLargePages(bytes);
  fBytes = fStart != nullptr ? bytes : 0;
}

cLargeRegion& cLargeRegion::operator=(cLargeRegion&& pFrom) noexcept {
  cLargeRegion former(std::move(*this));
  Swap(pFrom);
  return *this;
}

cLargeRegion::~cLargeRegion() {
  if (fStart != nullptr) Unmap(fStart, fBytes);
}

void* cLargeRegion::Take(std::size_t pBytes) {
  const std::size_t needed = SizeOf(pBytes);
  if (needed > fBytes - fTaken) return nullptr;
  char* const block = fStart + fTaken;
  fTaken += needed;
  Permit(block, pBytes);
  return block;
}

void cLargeRegion::Swap(cLargeRegion& pOther) noexcept {
  std::swap(fStart, pOther.fStart);
  std::swap(fBytes, pOther.fBytes);
  std::swap(fTaken, pOther.fTaken);
}

}  // namespace TmEngine
