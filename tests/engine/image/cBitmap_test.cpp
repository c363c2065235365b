#include "engine/image/cBitmap.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <climits>
#include <cstring>

#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapBGR8.h"
#include "engine/image/cBitmapU16T.h"
#include "engine/image/cBitmapXYZ32.h"
#include "engine/image/cBitmapXYZ32T.h"
#include "engine/image/cBitmapY32.h"
#include "engine/image/cBitmapY8.h"
#include "tests/engine/image/BitmapTestTools.h"

TM_TEST_NULL_ON_HUGE_ALLOCATION

namespace TmEngine {
namespace {

/// The rules of every untiled image, for one class; pTail and pMore are what its constructor takes behind the
/// sizes.
template <class tBitmap, class tSample, class... tMore>
void CheckClass(const std::string& pName, const std::string& pSampleType, const char* pMemoryText,
                const std::string& pTail, tMore... pMore) {
  SCOPED_TRACE(pName);
  const int pixelBytes = static_cast<int>(sizeof(tSample)) * (pName.find('Y') == 6 ? 1 : 3);
  const int sizes[][4] = {{1, 1, 4, 4}, {3, 2, 4, 4}, {4, 4, 4, 4}, {5, 5, 8, 8}, {8, 1, 8, 4}};
  for (const auto& [width, height, columns, rows] : sizes) {
    int stride = 0;
    void* const block = tBitmap::AllocBitmapData(width, height, stride);
    EXPECT_EQ(stride, columns * pixelBytes);
    EXPECT_EQ(tBitmap(width, height, pMore...).GetStride(), stride);
    const auto bytes = static_cast<std::size_t>(rows * stride);
    EXPECT_GE(malloc_usable_size(block), bytes);
    std::memset(block, 0, bytes);
    tBitmap::FreeBitmapData(static_cast<tSample*>(block));
  }
  const std::string width = "Argument pWidth must be greater than zero.";
  const std::string height = "Argument pHeight must be greater than zero.";
  const std::string scope = "__cdecl TmEngine::c" + pName + "::";
  int stride = 77;
  const auto alloc = [&](int w, int h) { tBitmap::AllocBitmapData(w, h, stride); };
  ExpectChecks(pSampleType + " *" + scope + "AllocBitmapData(int,int,int &)",
               {TM_ARG(width, alloc(0, 0)), TM_ARG(width, alloc(INT_MIN, 1)), TM_ARG(height, alloc(1, 0)),
                TM_MEMORY(pMemoryText, alloc(INT_MAX, 1)), TM_MEMORY(pMemoryText, alloc(INT_MAX, INT_MAX)),
                TM_MEMORY(pMemoryText, tBitmap(1 << 27, INT_MAX, pMore...))});
  EXPECT_EQ(stride, 77) << "a failed allocation sets no stride";
  ExpectChecks(scope + "c" + pName + "(int,int" + pTail + ")",
               {TM_ARG(width, tBitmap(0, 0, pMore...)), TM_ARG(height, tBitmap(1, -1, pMore...))});
  ExpectChecks(
      "void " + scope + "FreeBitmapData(" + pSampleType + " *)",
      {TM_NULL("Argument 'p" + pName.substr(6) + "' cannot be null.", tBitmap::FreeBitmapData(nullptr))});
}

TEST(cBitmap, RoundsRowsAndRowCountsUpToFourAndChecksSizesThenMemory) {
  const char* const plain = "Out of memory while allocating bitmap array.";
  const char* const floats = "Cannot alloc bitmap array.";
  const char* const withID = ",enum TmEngine::eColorSpaceID";
  const eColorSpaceID id = eColorSpaceID_sRGB;
  CheckClass<cBitmapBGR8, unsigned char>("BitmapBGR8", "unsigned char", plain, withID, id);
  CheckClass<cBitmapBGR16, unsigned short>("BitmapBGR16", "unsigned short", plain, withID, id);
  CheckClass<cBitmapXYZ32, float>("BitmapXYZ32", "float", floats, "");
  CheckClass<cBitmapY32, float>("BitmapY32", "float", floats, "");
  CheckClass<cBitmapY8, unsigned char>("BitmapY8", "unsigned char", plain, "");
}

TEST(cBitmap, SwapsWidthAndHeightOfNoImage) {
  cBitmapBGR8 bgr8(1, 2, eColorSpaceID_sRGB);
  cBitmapXYZ32 xyz32(1, 2);
  cBitmapU16T tiled(1, 2, 1);
  for (cBitmap* bitmap : std::initializer_list<cBitmap*>{&bgr8, &xyz32, &tiled}) {
    ExpectChecks(
        "void __cdecl TmEngine::cBitmap::SwapWidthHeight(void)",
        {TM_STATE("SwapWidthHeight() is not implemented for this class.", bitmap->SwapWidthHeight())});
  }
}

TEST(cBitmap, CopiesCheckTheirSourceInOrder) {
  cBitmapBGR8 bgr8(2, 3, eColorSpaceID_sRGB);
  cBitmapBGR16 bgr16(2, 3, eColorSpaceID_sRGB);
  cBitmapXYZ32 xyz32(2, 3);
  cBitmapXYZ32T tiled(2, 3);
  const auto check = [](const std::string& pMember, const std::string& pName, const std::string& pLeastStride,
                        int pLeast, auto pCopy) {
    ExpectChecks(
        "void __cdecl TmEngine::" + pMember,
        {TM_ARG("Argument pFromWidth must be equal to this->fWidth.", pCopy(3, 2, pLeast - 1)),
         TM_ARG("Argument pFromWidth must be equal to this->fHeight.", pCopy(2, 2, pLeast - 1)),
         TM_ARG("Argument pFromStride must be greater than or equal to " + pLeastStride + "*this->fWidth.",
                pCopy(2, 3, pLeast - 1)),
         TM_NULL("Argument " + pName + " cannot be null.", pCopy(2, 3, pLeast))});
  };
  check("cBitmapBGR8::CopyFromBGR8(int,int,int,unsigned char *)", "pFromBGR8", "3", 6,
        [&](int w, int h, int s) { bgr8.CopyFromBGR8(w, h, s, nullptr); });
  check("cBitmapBGR16::CopyFromBGR16(int,int,int,unsigned char *)", "pFromBGR16", "3", 12,
        [&](int w, int h, int s) { bgr16.CopyFromBGR16(w, h, s, nullptr); });
  check("cBitmapBGR16::CopyFromLittleEndianRGB16(int,int,int,unsigned short *)", "pFromLERGB16", "2*3", 12,
        [&](int w, int h, int s) { bgr16.CopyFromLittleEndianRGB16(w, h, s, nullptr); });
  check("cBitmapXYZ32::CopyFromXYZ32(int,int,int,const float *)", "pFromXYZ32", "12", 24,
        [&](int w, int h, int s) { xyz32.CopyFromXYZ32(w, h, s, nullptr); });
  check("cBitmapXYZ32T::CopyFromXYZ32(int,int,int,const float *)", "pFromXYZ32", "12", 24,
        [&](int w, int h, int s) { tiled.CopyFromXYZ32(w, h, s, nullptr); });
}

/// Copies two rows, pFromStride bytes apart, into a 2 x 2 image full of 0xEE.
template <class tCopy>
void CheckCopy(const cBitmap& pImage, void* pData, int pFromStride, const tCopy& pCopy) {
  const int stride = pImage.GetStride();
  const int written = pFromStride == stride ? stride : stride / 2;
  unsigned char* const bytes = static_cast<unsigned char*>(pData);
  std::memset(bytes, 0xEE, static_cast<std::size_t>(4 * stride));
  alignas(4) unsigned char source[128];
  for (int i = 0; i < 128; ++i) source[i] = static_cast<unsigned char>(i);
  pCopy(pFromStride, source);
  for (int i = 0; i < 4 * stride; ++i) {
    const int y = i / stride, x = i % stride;
    EXPECT_EQ(bytes[i], y < 2 && x < written ? y * pFromStride + x : 0xEE) << pFromStride << " " << i;
  }
}

TEST(cBitmap, CopiesAdvanceInBytesAndKeepThePaddingUnlessStridesAreEqual) {
  cBitmapBGR8 bgr8(2, 2, eColorSpaceID_sRGB);
  cBitmapBGR16 bgr16(2, 2, eColorSpaceID_sRGB);
  cBitmapXYZ32 xyz32(2, 2);
  for (const int add : {0, 1, 6, 7}) {
    CheckCopy(bgr8, bgr8.GetBitmapData(), 6 + add,
              [&](int s, unsigned char* p) { bgr8.CopyFromBGR8(2, 2, s, p); });
    CheckCopy(bgr16, bgr16.GetBitmapData(), 12 + 2 * add - add % 2,
              [&](int s, unsigned char* p) { bgr16.CopyFromBGR16(2, 2, s, p); });
    CheckCopy(xyz32, xyz32.GetBitmapData(), 24 + 4 * add - add % 2, [&](int s, unsigned char* p) {
      xyz32.CopyFromXYZ32(2, 2, s, reinterpret_cast<const float*>(p));
    });
  }
}

}  // namespace
}  // namespace TmEngine
