#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "engine/cBitmapU16T.h"
#include "engine/cBitmapXYZ32.h"
#include "engine/cBitmapXYZ32T.h"
#include "tests/BitmapTestTools.h"

namespace TmEngine {
namespace {

TEST(cBitmapU16T, AddressesRowsAcrossBands) {
  cBitmapU16T small(1, 1, 7);
  EXPECT_EQ(small.GetStride(), 56);
  EXPECT_EQ(small.GetTileHeight(), 187245);
  EXPECT_EQ(small.GetTileCount(), 1);
  EXPECT_EQ(small.GetPlaneCount(), 7);

  cBitmapU16T image(250001, 10, 7);  // 250,004 padded pixels: two rows a band
  ASSERT_EQ(image.GetTileHeight(), 2);
  ASSERT_EQ(image.GetTileCount(), 6);
  const std::size_t samples = 250004u * 7u;
  for (int y = 0; y < 10; ++y) {
    for (std::size_t i = 0; i < samples; i += 25000) image.GetRow(y)[i] = static_cast<unsigned short>(y);
    image.GetRow(y)[samples - 1] = static_cast<unsigned short>(100 + y);
  }
  for (int y = 0; y < 10; ++y) {
    EXPECT_EQ(image.GetRow(y)[25000], y);
    EXPECT_EQ(image.GetRow(y)[samples - 1], 100 + y);
  }
}

TEST(cBitmapXYZ32T, CopiesRowsThatAdvanceByWholeFloats) {
  std::vector<float> source(64);
  for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<float>(i);
  for (const int stride : {24, 27, 28, 48}) {
    cBitmapXYZ32T image(2, 3);
    for (int y = 0; y < 3; ++y) std::memset(image.GetRow(y), 0xEE, 48);
    image.CopyFromXYZ32(2, 3, stride, source.data());
    for (int y = 0; y < 3; ++y) {
      EXPECT_EQ(std::memcmp(image.GetRow(y), source.data() + stride / 4 * y, 24), 0) << stride << " " << y;
      EXPECT_EQ(std::memcmp(image.GetRow(y) + 6, std::string(24, '\xEE').data(), 24), 0)
          << stride << " " << y;
    }
  }
}

TEST(cBitmapXYZ32T, CopiesAPlainImageBandByBand) {
  cBitmapXYZ32 from(300000, 6);  // two rows a band
  const std::ptrdiff_t rowFloats = 900000;
  for (int y = 0; y < 6; ++y) {
    for (std::ptrdiff_t i = 0; i < rowFloats; ++i) {
      from.GetBitmapData()[rowFloats * y + i] = static_cast<float>(i % 997 + 1000 * y);
    }
  }
  const cBitmapXYZ32T tiled(&from);
  EXPECT_EQ(tiled.GetTileCount(), 4);
  EXPECT_EQ(tiled.GetTileHeight(), 2);
  for (int y = 0; y < 6; ++y) {
    EXPECT_EQ(std::memcmp(tiled.GetRow(y), from.GetBitmapData() + rowFloats * y, 3600000), 0) << y;
  }
}

TEST(cBitmapTiled, ConstructorsCheckArgumentsInOrder) {
  const std::string width = "Argument pWidth must be greater than zero.";
  const std::string height = "Argument pHeight must be greater than zero.";
  const std::string tiles = "Cannot alloc bitmap tiles.";
  ExpectChecks("__cdecl TmEngine::cBitmapU16T::cBitmapU16T(int,int,int)",
               {TM_ARG(width, cBitmapU16T(0, 0, 0)), TM_ARG(height, cBitmapU16T(1, 0, 0)),
                TM_ARG("Argument pPlane must be greater than zero.", cBitmapU16T(1, 1, 0)),
                TM_MEMORY(tiles, cBitmapU16T(1310720, INT_MAX, 4))});
  ExpectChecks("__cdecl TmEngine::cBitmapXYZ32T::cBitmapXYZ32T(int,int)",
               {TM_ARG(width, cBitmapXYZ32T(0, 0)), TM_ARG(height, cBitmapXYZ32T(1, 0)),
                TM_MEMORY(tiles, cBitmapXYZ32T(873812, INT_MAX))});
  const std::string tooWide = "Scanline width exceeds max tile size.";
  ExpectChecks("void **__cdecl TmEngine::cMemUtils::TiledBitmapAlloc(int,int,int,int &,int &,int &)",
               {TM_STATE(tooWide, cBitmapU16T(748981, 1, 7)), TM_STATE(tooWide, cBitmapU16T(1, 1, INT_MAX)),
                TM_STATE(tooWide, cBitmapXYZ32T(873813, 1))});
  const cBitmapXYZ32* const none = nullptr;
  ExpectChecks("__cdecl TmEngine::cBitmapXYZ32T::cBitmapXYZ32T(const class TmEngine::cBitmapXYZ32 *)",
               {TM_NULL("Argument pFrom cannot be null.", cBitmapXYZ32T copy(none))});
}

}  // namespace
}  // namespace TmEngine
