#include "engine/base/cMemUtils.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/resource.h>

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "tests/engine/image/BitmapTestTools.h"

TM_TEST_NULL_ON_HUGE_ALLOCATION

namespace TmEngine {
namespace {

TEST(cMemUtils, CutsImagesIntoBandsOfWholeRows) {
  const struct {
    int fWidth, fHeight, fPixelBytes;
    int fStride, fTileCount, fTileHeight, fLastRows;
  } cases[] = {{1, 1, 14, 56, 1, 187245, 4},        // far smaller than a band
               {262144, 4, 10, 2621440, 1, 4, 4},   // exactly one band
               {262144, 8, 10, 2621440, 2, 4, 4},   // exactly two
               {262141, 9, 10, 2621440, 3, 4, 4},   // another four rows
               {200000, 10, 12, 2400000, 3, 4, 4},  // a band is not filled to the byte
               {300000, 6, 12, 3600000, 4, 2, 2},   // padded rows count
               {873812, 3, 12, 10485744, 4, 1, 1},  // the widest row of floats
               {1310720, 1, 8, 10485760, 4, 1, 1},  // exactly the limit
               {1000000, 8, 3, 3000000, 3, 3, 2}};  // a shorter last band
  for (const auto& row : cases) {
    int stride = 0, count = 0, height = 0;
    void** const tiles =
        cMemUtils::TiledBitmapAlloc(row.fWidth, row.fHeight, row.fPixelBytes, stride, count, height);
    ASSERT_NE(tiles, nullptr);
    EXPECT_EQ(stride, row.fStride);
    EXPECT_EQ(height, row.fTileHeight);
    ASSERT_EQ(count, row.fTileCount);
    for (int i = 0; i < count; ++i) {
      const std::size_t bytes =
          static_cast<std::size_t>(stride) * static_cast<std::size_t>(i + 1 < count ? height : row.fLastRows);
      EXPECT_GE(malloc_usable_size(tiles[i]), bytes);
      static_cast<char*>(tiles[i])[bytes - 1] = 0;
      EXPECT_LT(malloc_usable_size(tiles[i]), bytes + 8192);
    }
    cMemUtils::TiledBitmapFree(tiles, count, height);
  }
}

TEST(cMemUtils, ChecksATiledAllocation) {
  int stride = 1, count = 2, height = 3;
  const auto alloc = [&](int w, int h, int bytes) {
    return cMemUtils::TiledBitmapAlloc(w, h, bytes, stride, count, height);
  };
  const std::string tooWide = "Scanline width exceeds max tile size.";
  ExpectChecks("void **__cdecl TmEngine::cMemUtils::TiledBitmapAlloc(int,int,int,int &,int &,int &)",
               {TM_ARG("Argument 'pWidth' cannot be less or equal to 0.", alloc(0, 0, 0)),
                TM_ARG("Argument 'pHeight' cannot be less or equal to 0.", alloc(1, -1, 0)),
                TM_ARG("Argument 'pPixelByteSize' cannot be less or equal to 0.", alloc(1000000, 1, 0)),
                TM_STATE(tooWide, alloc(1000000, 1, 12)), TM_STATE(tooWide, alloc(1310721, INT_MAX, 8)),
                TM_STATE(tooWide, alloc(INT_MAX, INT_MAX, INT_MAX))});
  // More bands than an int counts is a want of memory like any other.
  EXPECT_EQ(alloc(873812, INT_MAX, 12), nullptr);
  EXPECT_EQ(stride + 10 * count + 100 * height, 321) << "nothing is set on failure";
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // they reserve address space
TEST(cMemUtils, ReturnsAllBandsWhenOneCannotBeHad) {
  rlimit old;
  ASSERT_EQ(getrlimit(RLIMIT_AS, &old), 0);
  const rlimit tight = {std::size_t{512} << 20, old.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_AS, &tight), 0);
  int stride = 0, count = 0, height = 0;
  for (int attempt = 0; attempt < 4; ++attempt) {  // bands kept by a failure would leave no memory
    EXPECT_EQ(cMemUtils::TiledBitmapAlloc(100000, 10000, 12, stride, count, height), nullptr);
    void** const tiles = cMemUtils::TiledBitmapAlloc(100000, 34, 12, stride, count, height);
    EXPECT_NE(tiles, nullptr);
    if (tiles != nullptr) cMemUtils::TiledBitmapFree(tiles, count, height);
  }
  setrlimit(RLIMIT_AS, &old);
}
#endif

TEST(cMemUtils, FreesEverythingBeforeItReportsANullTile) {
  void* some[1] = {nullptr};
  void** const tiles = static_cast<void**>(std::calloc(3, sizeof(void*)));
  tiles[0] = std::malloc(8);  // the leak check watches both and the array
  tiles[2] = std::malloc(8);
  const auto free = [](void** t, int c, int h) { cMemUtils::TiledBitmapFree(t, c, h); };
  ExpectChecks("void __cdecl TmEngine::cMemUtils::TiledBitmapFree(void **,int,int)",
               {TM_ARG("Argument 'pTiles' cannot be null.", free(nullptr, 0, 0)),
                TM_ARG("Argument 'pTileCount' cannot be less or equal to 0.", free(some, 0, 0)),
                TM_ARG("Argument 'pTileHeight' cannot be less or equal to 0.", free(some, 1, 0)),
                TM_STATE("Tiles array contains one or several null tiles.", free(tiles, 3, 1))});
}

TEST(cMemUtils, CopiesInsideABlockOnly) {
  char block[8] = "abcdefg";
  const char from[] = "123";
  const std::string outside = "Cannot copy outside of memory block.";
  const std::string beyond =
      "Argument 'pDst' cannot be greater than or equal to 'pBlockStart + pBlockLength'.";
  const auto top = reinterpret_cast<void*>(UINTPTR_MAX - 3);  // sums of it wrap; nothing is written there
  char* const nearTop = reinterpret_cast<char*>(UINTPTR_MAX - 20);
  const auto copy = cMemUtils::SafeMemCopy;
  ExpectChecks(
      "void __cdecl TmEngine::cMemUtils::SafeMemCopy(void *,const void *,unsigned int,void *,unsigned int)",
      {TM_NULL("Argument 'pBlockStart' cannot be null.", copy(nullptr, nullptr, 0, nullptr, 0)),
       TM_NULL("Argument 'pSrc' cannot be null.", copy(nullptr, nullptr, 0, block, 0)),
       TM_ARG("Argument 'pByteCount' must be greater than zero.", copy(nullptr, from, 0, block, 0)),
       TM_ARG("Argument 'pBlockLength' must be greater than zero.", copy(nullptr, from, 9, block, 0)),
       TM_ARG("Argument 'pDst' cannot be less than 'pBlockStart'.", copy(nullptr, from, 9, block, 4)),
       TM_ARG(beyond, copy(block + 4, from, 9, block, 4)),
       TM_ARG(outside, copy(block + 3, from, 2, block, 4)),
       TM_ARG(outside, copy(block + 3, from, UINT_MAX, block, 4)),
       TM_ARG(outside, copy(top, from, 100, top, 16)),
       TM_ARG(outside, copy(nearTop + 8, from, 100, nearTop, 16))});
  EXPECT_STREQ(block, "abcdefg");
  copy(block + 3, from, 1, block, 4);
  EXPECT_STREQ(block, "abc1efg");
}

}  // namespace
}  // namespace TmEngine
