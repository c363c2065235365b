#include "engine/base/cLargeRegion.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <utility>

#if defined(TM_WATCHES_ADDRESSES)
#include <sanitizer/asan_interface.h>
#endif

namespace TmEngine {
namespace {

constexpr std::size_t kMega = std::size_t{1} << 20;

TEST(cLargeRegion, GivesBlocksUntilItIsFull) {
  cLargeRegion region(5 * kMega);
  void* const first = region.Take(3 * kMega - 1);
  if (first == nullptr) GTEST_SKIP() << "this build or system has no regions";
  const std::size_t rest = 6 * kMega - cLargeRegion::SizeOf(3 * kMega - 1) - cLargeRegion::SizeOf(0);
  void* const second = region.Take(rest);  // the region is rounded up to whole large pages
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(region.Take(1), nullptr);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(second) % 64, 0u);
  std::memset(first, 1, 3 * kMega - 1);
  std::memset(second, 2, rest);
  EXPECT_EQ(static_cast<unsigned char*>(first)[3 * kMega - 2], 1);

  region = cLargeRegion(4 * kMega);  // the former goes back
  EXPECT_NE(region.Take(4 * kMega - cLargeRegion::SizeOf(0)), nullptr);
  cLargeRegion other(std::move(region));
  EXPECT_EQ(other.Take(1), nullptr);
}

#if defined(TM_WATCHES_ADDRESSES)
TEST(cLargeRegion, HasItsBlocksWatched) {
  cLargeRegion region(5 * kMega);
  auto* const block = static_cast<char*>(region.Take(1001));
  auto* const next = static_cast<char*>(region.Take(64));
  for (const char* const used : {block, block + 1000, next, next + 63})
    EXPECT_FALSE(__asan_address_is_poisoned(used));
  for (const char* const unused : {block + 1001, next - 1, next + 64, block + 5 * kMega - 1})
    EXPECT_TRUE(__asan_address_is_poisoned(unused));
}
#endif

TEST(cLargeRegion, IsEmptyForOtherSizes) {
  for (const std::size_t bytes : {std::size_t{0}, 4 * kMega - 1, 129 * kMega, SIZE_MAX}) {
    EXPECT_EQ(cLargeRegion(bytes).Take(1), nullptr) << bytes;
  }
  EXPECT_EQ(cLargeRegion().Take(1), nullptr);
}

}  // namespace
}  // namespace TmEngine
