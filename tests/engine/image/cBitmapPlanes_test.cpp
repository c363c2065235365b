#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <memory>
#include <numeric>

#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapBGR8.h"
#include "engine/image/cBitmapU16T.h"
#include "engine/image/cBitmapXYZ32.h"
#include "engine/image/cBitmapXYZ32T.h"
#include "engine/image/cBitmapY8.h"
#include "tests/Numbers.h"
#include "tests/engine/image/BitmapTestTools.h"

namespace TmEngine {
namespace {

TEST(cBitmapXYZ32, CopiesAnotherImage) {
  cBitmapXYZ32 from(3, 5);
  for (int i = 0; i < 12 * 8; ++i) from.GetBitmapData()[i] = static_cast<float>(i);
  const cBitmapXYZ32 copy(&from);
  EXPECT_EQ(copy.GetWidth(), 3);
  EXPECT_EQ(copy.GetHeight(), 5);
  EXPECT_NE(copy.GetBitmapData(), from.GetBitmapData());
  EXPECT_EQ(std::memcmp(copy.GetBitmapData(), from.GetBitmapData(), 5 * 48), 0);
}

TEST(cBitmapXYZ32, ChecksArgumentsInOrder) {
  cBitmapXYZ32 image(2, 3);
  const cBitmapXYZ32* const none = nullptr;
  ExpectChecks("__cdecl TmEngine::cBitmapXYZ32::cBitmapXYZ32(const class TmEngine::cBitmapXYZ32 *)",
               {TM_NULL("Argument pFrom cannot be null.", cBitmapXYZ32 copy(none))});
  ExpectChecks("void __cdecl TmEngine::cBitmapXYZ32::BGRFloatToBGR8Data(int,int,int,unsigned char *) const",
               {TM_ARG("Argument pToWidth must be equal to  this->fWidth.",
                       image.BGRFloatToBGR8Data(3, 2, 0, nullptr)),
                TM_ARG("Argument pToHeight must be equal to  this->fHeight.",
                       image.BGRFloatToBGR8Data(2, 2, 0, nullptr)),
                TM_NULL("Argument pToBGR8 cannot be null.", image.BGRFloatToBGR8Data(2, 3, 0, nullptr))});
}

TEST(cBitmapXYZ32, WritesClampedTruncatedBytes) {
  cBitmapXYZ32 image(2, 2);
  const float samples[2][6] = {{-0.5f, 0.999f, 1.0f, 2.0f, kNaN, kInfinity},
                               {-kInfinity, 0.5f, 0.0039f, 0.99999994f, 1.0000001f, -0.0f}};
  const unsigned char expected[2][6] = {{0, 254, 255, 255, 0, 255}, {0, 127, 0, 254, 255, 0}};
  for (int y = 0; y < 2; ++y) std::memcpy(image.GetBitmapData() + 12 * y, samples[y], sizeof samples[y]);
  unsigned char to[14];
  std::memset(to, 0xEE, sizeof to);
  image.BGRFloatToBGR8Data(2, 2, 7, to);
  for (int y = 0; y < 2; ++y) {
    for (int x = 0; x < 6; ++x) EXPECT_EQ(to[7 * y + x], expected[y][x]) << y << " " << x;
    EXPECT_EQ(to[7 * y + 6], 0xEE);
  }
}

TEST(cBitmapY8, WeighsSamplesAsLuma) {
  unsigned char bgr8[] = {255, 255, 255, 0, 0, 255, 99, 0, 255, 0, 255, 0, 0, 99};  // rows of 7 bytes
  const std::unique_ptr<cBitmapY8> from8(cBitmapY8::FromBGR8(bgr8, 2, 2, 7));
  unsigned short bgr16[] = {65535, 65535, 65535, 0, 0, 65535, 9, 0, 65535, 0, 65535, 0, 0, 9};
  const std::unique_ptr<cBitmapY8> from16(cBitmapY8::FromBGR16(bgr16, 2, 2, 15));  // seven samples
  const int expected8[] = {254, 76, 149, 29}, expected16[] = {255, 76, 150, 29};
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(from8->GetBitmapData()[i / 2 * 4 + i % 2], expected8[i]) << i;
    EXPECT_EQ(from16->GetBitmapData()[i / 2 * 4 + i % 2], expected16[i]) << i;
  }
  unsigned char to[14];
  std::memset(to, 0xEE, sizeof to);
  from8->CopyToBGR8(to, 2, 2, 7);
  const unsigned char expected[] = {254, 254, 254, 76, 76, 76, 0xEE, 149, 149, 149, 29, 29, 29, 0xEE};
  EXPECT_EQ(std::memcmp(to, expected, sizeof to), 0);
}

/// An image of a depth that no factory knows.
class cBitmapTen : public cBitmapBGR8 {
 public:
  cBitmapTen() : cBitmapBGR8(1, 1, eColorSpaceID_sRGB) {}
  int GetBitDepth() const override { return 10; }
};

TEST(cBitmapY8, TakesImagesByTheirDepth) {
  cBitmapBGR8 bgr8(1, 2, eColorSpaceID_sRGB);
  cBitmapBGR16 bgr16(1, 2, eColorSpaceID_sRGB);
  std::memset(bgr8.GetBitmapData(), 0xFF, 48);
  std::memset(bgr16.GetBitmapData(), 0xFF, 96);
  const std::unique_ptr<cBitmapY8> from8(cBitmapY8::FromBitmapLDR(&bgr8));
  const std::unique_ptr<cBitmapY8> from16(cBitmapY8::FromBitmapLDR(&bgr16));
  EXPECT_EQ(from8->GetHeight(), 2);
  EXPECT_EQ(from8->GetBitmapData()[4], 254);
  EXPECT_EQ(from16->GetBitmapData()[4], 255);
  cBitmapTen ten;
  EXPECT_EQ(cBitmapY8::FromBitmapLDR(&ten), nullptr);
}

TEST(cBitmapY8, ChecksArgumentsInOrder) {
  const auto check = [](const std::string& pFactory, const std::string& pName, auto* pPixels, auto pMake) {
    const std::string stride = "Argument pSrcStride must be greater than or equal to 3*pSrcWidth.";
    ExpectChecks(
        "class TmEngine::cBitmapY8 *__cdecl TmEngine::cBitmapY8::" + pFactory,
        {TM_NULL("Argument " + pName + " cannot be null.", pMake(nullptr, 0, 0, 0)),
         TM_ARG("Argument pSrcWidth must be greater than zero.", pMake(pPixels, 0, 0, -1)),
         TM_ARG("Argument pSrcHeight must be greater than zero.", pMake(pPixels, 2, 0, 5)),
         TM_ARG(stride, pMake(pPixels, 2, 1, 5)), TM_ARG(stride, pMake(pPixels, 1 << 30, 1, 1 << 30))});
  };
  unsigned char bytes[6] = {};
  unsigned short words[6] = {};
  check("FromBGR8(unsigned char *,int,int,int)", "pSrcBGR8", bytes, cBitmapY8::FromBGR8);
  check("FromBGR16(unsigned short *,int,int,int)", "pSrcBGR16", words, cBitmapY8::FromBGR16);
  delete cBitmapY8::FromBGR16(words, 2, 1, 6);  // the bound is that of bytes
  ExpectChecks(
      "class TmEngine::cBitmapY8 *__cdecl TmEngine::cBitmapY8::FromBitmapLDR(class TmEngine::cBitmapLDR *)",
      {TM_NULL("Argument pSrcLDR cannot be null.", cBitmapY8::FromBitmapLDR(nullptr))});
}

TEST(cBitmapY8, CopiesOutLikeTheColourImageCheckArgumentsInOrder) {
  unsigned char to[6];
  const auto check = [&to](const std::string& pClass, auto& pImage) {
    ExpectChecks(
        "void __cdecl TmEngine::" + pClass + "::CopyToBGR8(unsigned char *,int,int,int)",
        {TM_NULL("Argument pDstBGR8 cannot be null.", pImage.CopyToBGR8(nullptr, 1, 2, 5)),
         TM_ARG("Argument pDstWidth must be equal to this->fWidth.", pImage.CopyToBGR8(to, 1, 2, 2)),
         TM_ARG("Argument pDstHeight must be equal to this->fHeight.", pImage.CopyToBGR8(to, 2, 2, 5)),
         TM_ARG("Argument pDstStride must be greater than or equal to 3*pDstWidth.",
                pImage.CopyToBGR8(to, 2, 1, 5))});
  };
  cBitmapY8 y8(2, 1);
  cBitmapBGR8 bgr8(2, 1, eColorSpaceID_sRGB);
  check("cBitmapY8", y8);
  check("cBitmapBGR8", bgr8);
}

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
  std::iota(source.begin(), source.end(), 1.0f);
  for (const int stride : {24, 27, 28, 48}) {
    cBitmapXYZ32T image(2, 3);
    for (int y = 0; y < 3; ++y) std::memset(image.GetRow(y), 0xEE, 48);
    image.CopyFromXYZ32(2, 3, stride, source.data());
    for (int y = 0; y < 3; ++y) {
      EXPECT_EQ(std::memcmp(image.GetRow(y), source.data() + stride / 4 * y, 24), 0) << stride << " " << y;
      EXPECT_EQ(std::string(reinterpret_cast<char*>(image.GetRow(y) + 6), 24), std::string(24, '\xEE')) << y;
    }
  }
}

TEST(cBitmapXYZ32T, CopiesAPlainImageBandByBand) {
  cBitmapXYZ32 from(300000, 6);  // two rows a band
  const std::ptrdiff_t rowFloats = 900000;
  std::iota(from.GetBitmapData(), from.GetBitmapData() + 6 * rowFloats, 1.0f);
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
