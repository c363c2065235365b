#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
#define TM_WATCHES_ADDRESSES
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TM_WATCHES_ADDRESSES
#endif
#endif

namespace TmEngine {

/// Memory of a few megabytes straight from the system, which begins where a large page does, for blocks that
/// are too small to get large pages one by one: most of the cost of fresh memory is paid per page. Only speed
/// depends on it: where there is no region, blocks come from malloc.
class cLargeRegion {
#if defined(TM_WATCHES_ADDRESSES)
  static constexpr std::size_t kGap = 64;  // behind each block, where the sanitizer reports what is touched
#else
  static constexpr std::size_t kGap = 0;
#endif

 public:
  cLargeRegion() = default;
  /// Empty for sizes that gain nothing, and where the system has no such memory.
  explicit cLargeRegion(std::size_t pBytes);
  cLargeRegion(cLargeRegion&& pFrom) noexcept {
    Swap(pFrom);
  }
  cLargeRegion& operator=(cLargeRegion&& pFrom) noexcept;
  ~cLargeRegion();

  /// A block that the region owns, aligned to 64 bytes and not cleared; null when the region is full.
  void* Take(std::size_t pBytes);

  /// Bytes that Take needs for a block.
  static constexpr std::size_t SizeOf(std::size_t pBytes) {
    return ((pBytes + 63) & ~std::size_t{63}) + kGap;
  }

 private:
  void Swap(cLargeRegion& pOther) noexcept;

  char* fStart = nullptr;
  std::size_t fBytes = 0;
  std::size_t fTaken = 0;
};

}  // namespace TmEngine
