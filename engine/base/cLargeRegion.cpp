#include "engine/base/cLargeRegion.h"

#include <utility>

#include "engine/base/System.h"

#if defined(TM_WATCHES_ADDRESSES)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(pStart, pBytes) static_cast<void>(0)
#define ASAN_UNPOISON_MEMORY_REGION(pStart, pBytes) static_cast<void>(0)
#endif

namespace TmEngine {
namespace {

constexpr std::size_t kLeastBytes = 2 * kLargePage;
constexpr std::size_t kMostBytes = 64 * kLargePage;  // larger blocks do well on their own

// The address sanitizer watches blocks from malloc only; others are announced to it.
void Forbid([[maybe_unused]] char* pStart, [[maybe_unused]] std::size_t pBytes) {
  ASAN_POISON_MEMORY_REGION(pStart, pBytes);
}

void Permit([[maybe_unused]] char* pStart, [[maybe_unused]] std::size_t pBytes) {
  ASAN_UNPOISON_MEMORY_REGION(pStart, pBytes);
}

}  // namespace

cLargeRegion::cLargeRegion(std::size_t pBytes) {
  if (pBytes < kLeastBytes || pBytes > kMostBytes) return;
  const std::size_t bytes = (pBytes + kLargePage - 1) / kLargePage * kLargePage;
  fStart = MapLargePages(bytes);
  fBytes = fStart != nullptr ? bytes : 0;
  Forbid(fStart, fBytes);
}

cLargeRegion& cLargeRegion::operator=(cLargeRegion&& pFrom) noexcept {
  cLargeRegion former(std::move(*this));
  Swap(pFrom);
  return *this;
}

cLargeRegion::~cLargeRegion() {
  if (fStart == nullptr) return;
  Permit(fStart, fBytes);
  UnmapLargePages(fStart, fBytes);
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
