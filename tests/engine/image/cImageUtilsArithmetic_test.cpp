#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <memory>

#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapBGR8.h"
#include "engine/image/cBitmapXYZ32.h"
#include "engine/image/cBitmapY8.h"
#include "engine/image/cImageUtils.h"
#include "tests/StderrCapture.h"
#include "tests/engine/image/BitmapTestTools.h"

namespace TmEngine {
namespace {

constexpr eColorSpaceID kSpace = eColorSpaceID_sRGB;

class cImageUtilsMore : public testing::Test {
 protected:
  cStderrCapture fSilence;  // 8-bit images write a line each
  cBitmapBGR8 f8{5, 4, kSpace}, f8Other{5, 4, kSpace}, f8Small{4, 3, kSpace};
  cBitmapBGR16 f16{5, 4, kSpace}, f16Other{5, 4, kSpace}, f16Small{4, 3, kSpace};
  cBitmapXYZ32 fXYZ{5, 4}, fXYZOther{5, 4}, fXYZSmall{4, 3}, fXYZLow{5, 3};
  cBitmapY8 fY8{5, 4}, fY8Small{4, 3};
};

/// The checks of a copy of pSrc (5 x 4) into pDst (4 x 3); row k breaks check k and those after it.
template <class tImage>
void ExpectCopyChecks(const std::string& pClass, const std::string& pName, tImage& pSrc, tImage& pDst) {
  const auto copy = [](const tImage* pFrom, tImage* pTo, int pSX, int pSY, int pDX, int pDY, int pW, int pH) {
    cImageUtils::Copy(pFrom, pTo, pSX, pSY, pDX, pDY, pW, pH);
  };
  const std::string bad = " rectangle is out of range.";
  tImage* const none = nullptr;
  ExpectChecks("void __cdecl TmEngine::cImageUtils::Copy(const class TmEngine::" + pClass +
                   " *,class TmEngine::" + pClass + " *,int,int,int,int,int,int)",
               {TM_NULL("Argument pSrc" + pName + " cannot be null.", copy(none, none, -1, 0, -1, 0, 0, 0)),
                TM_NULL("Argument pDst" + pName + " cannot be null.", copy(&pSrc, none, -1, 0, -1, 0, 0, 0)),
                TM_ARG("Argument pWidth must be greater than zero.", copy(&pSrc, &pDst, -1, 0, -1, 0, 0, 0)),
                TM_ARG("Argument pWidth must be greater than zero.", copy(&pSrc, &pDst, -1, 0, -1, 0, 9, -1)),
                TM_ARG("Top/Left corner of source" + bad, copy(&pSrc, &pDst, -1, 0, -1, 0, 9, 9)),
                TM_ARG("Top/Left corner of source" + bad, copy(&pSrc, &pDst, 0, 4, -1, 0, 9, 9)),
                TM_ARG("Bottom/Right corner of source" + bad, copy(&pSrc, &pDst, 1, 0, -1, 0, 5, 1)),
                TM_ARG("Bottom/Right corner of source" + bad, copy(&pSrc, &pDst, 4, 3, -1, 0, 1, INT_MAX)),
                TM_ARG("Top/Left corner of destination" + bad, copy(&pSrc, &pDst, 1, 0, 0, -1, 4, 4)),
                TM_ARG("Bottom/Right corner of destination" + bad, copy(&pSrc, &pDst, 1, 0, 0, 0, 4, 4))});
  copy(&pSrc, &pDst, 1, 1, 0, 0, 4, 3);  // up to the last column and row of both
}

TEST_F(cImageUtilsMore, CopiesRectanglesThatLieInside) {
  cImageUtils::Fill(&f8, 1, 2, 3);
  cImageUtils::Fill(&f16, 1, 2, 3);
  std::fill_n(fY8.GetBitmapData(), 4 * fY8.GetStride(), static_cast<unsigned char>(7));
  ExpectCopyChecks("cBitmapBGR8", "BGR", f8, f8Small);
  ExpectCopyChecks("cBitmapBGR16", "BGR", f16, f16Small);
  ExpectCopyChecks("cBitmapY8", "Y8", fY8, fY8Small);

  // Rows and columns land where they should, and an overlap is copied forward: what was written is read
  // again.
  unsigned char* row = f8.GetBitmapData();
  for (unsigned char i = 0; i < 15; ++i) row[i] = i;
  cImageUtils::Copy(&f8, &f8, 0, 0, 1, 0, 3, 1);
  for (int i = 0; i < 15; ++i) EXPECT_EQ(row[i], i < 12 ? i % 3 : i) << i;
  for (unsigned char i = 0; i < 12; ++i) row[f8.GetStride() + 3 + i] = static_cast<unsigned char>(100 + i);
  cImageUtils::Copy(static_cast<const cBitmapLDR*>(&f8), static_cast<cBitmapLDR*>(&f8Small), 2, 1, 1, 2, 2,
                    1);
  const unsigned char* low = f8Small.GetBitmapData() + 2 * f8Small.GetStride();
  EXPECT_EQ(low[2], 1);  // of the copy above
  for (int i = 0; i < 6; ++i) EXPECT_EQ(low[3 + i], 103 + i);

  const char* const kSignature =
      "void __cdecl TmEngine::cImageUtils::Copy(const class TmEngine::cBitmapLDR *,class "
      "TmEngine::cBitmapLDR *,"
      "int,int,int,int,int,int)";
  cBitmapLDR* const none = nullptr;
  const auto copy = [](const cBitmapLDR* pFrom, cBitmapLDR* pTo) {
    cImageUtils::Copy(pFrom, pTo, 0, 0, 0, 0, 0, 0);
  };
  ExpectChecks(kSignature,
               {TM_NULL("Argument pSrcBGR cannot be null.", copy(none, none)),
                TM_NULL("Argument pDstBGR cannot be null.", copy(&f8, none)),
                TM_ARG("Argument pSrcBGR and pDstBGR must have the same bit depth.", copy(&f8, &f16))});
  EXPECT_THROW(copy(&f16, &f16Small), cArgumentException);
}

TEST_F(cImageUtilsMore, FillsAndCalculates) {
  cImageUtils::Fill(&f8, 10, 20, 30);
  cImageUtils::Fill(&f16, 1000, 2000, 3000);
  const int last = 3 * f8.GetStride() + 12;
  EXPECT_EQ(
      f8.GetBitmapData()[last] * 10000 + f8.GetBitmapData()[last + 1] * 100 + f8.GetBitmapData()[last + 2],
      302010);
  EXPECT_EQ(f16.GetBGR16Data()[0] - f16.GetBGR16Data()[2], 2000);
  cImageUtils::Fill(&fXYZ, 1.0f, 2.0f, 3.0f);
  cImageUtils::Fill(&fXYZOther, 0.5f, 0.25f, -1.0f);
  const auto pixel = [&] {
    const float* at = fXYZ.GetBitmapData() + 3 * fXYZ.GetStride() / 4 + 12;
    return std::vector<float>(at, at + 3);
  };
  EXPECT_EQ(pixel(), (std::vector<float>{1.0f, 2.0f, 3.0f}));
  cImageUtils::Sub(&fXYZ, &fXYZOther);
  EXPECT_EQ(pixel(), (std::vector<float>{0.5f, 1.75f, 4.0f}));
  cImageUtils::Mul(&fXYZ, 2.0f);
  EXPECT_EQ(pixel(), (std::vector<float>{1.0f, 3.5f, 8.0f}));
  cImageUtils::Mul(&fXYZOther, &fXYZ, 4.0f);
  EXPECT_EQ(pixel(), (std::vector<float>{2.0f, 1.0f, -4.0f}));
  cImageUtils::Mul(&fXYZ, &fXYZOther, &fXYZ);
  EXPECT_EQ(pixel(), (std::vector<float>{1.0f, 0.25f, 4.0f}));
}

TEST_F(cImageUtilsMore, SumsAndFindsDifferences) {
  cImageUtils::Fill(&f8, 1, 200, 3);
  cImageUtils::Fill(&f8Other, 3, 0, 2);
  cImageUtils::Fill(&f16, 65535, 0, 3);
  cImageUtils::Fill(&f16Other, 0, 1, 3);
  cImageUtils::Fill(&fXYZ, 1.0f, 2.0f, 3.0f);
  cImageUtils::Fill(&fXYZOther, 1.5f, 2.0f, -3.0f);
  double d0 = 0, d1 = 0, d2 = 0;
  cImageUtils::Diff(&f8, &f8Other, d0, d1, d2);
  EXPECT_EQ(std::vector<double>({d0, d1, d2}), std::vector<double>({20.0, 4000.0, 40.0}));
  cImageUtils::Diff(&f16, &f16Other, d0, d1, d2);
  EXPECT_EQ(std::vector<double>({d0, d1, d2}), std::vector<double>({0.0, 20.0, 1310700.0}));
  cImageUtils::Diff(&fXYZ, &fXYZOther, d0, d1, d2);
  EXPECT_EQ(std::vector<double>({d0, d1, d2}), std::vector<double>({10.0, 0.0, 120.0}));
  EXPECT_EQ(cImageUtils::Diff(&f8, &f8Other), 4060.0);
  EXPECT_EQ(cImageUtils::Diff(&f16, &f16Other), 1310720.0);
  EXPECT_EQ(cImageUtils::Diff(&fXYZ, &fXYZOther), 130.0);
  EXPECT_EQ(cImageUtils::MaxDiff(&f8, &f8Other), 200);
  EXPECT_EQ(cImageUtils::MaxDiff(&f16Other, &f16), 65535);
  EXPECT_EQ(cImageUtils::MaxDiff(&f8, &f8), 0);
}

TEST_F(cImageUtilsMore, ArithmeticChecksItsArguments) {
  const std::string prefix = "void __cdecl TmEngine::cImageUtils::", xyz = "class TmEngine::cBitmapXYZ32 *";
  cBitmapXYZ32* const none = nullptr;
  const std::string width = "->fWidth must be equal to ", height = "->fHeight must be equal to ";
  ExpectChecks(prefix + "Sub(" + xyz + ",const " + xyz + ")",
               {TM_NULL("Argument pSrc1 cannot be null.", cImageUtils::Sub(none, none)),
                TM_NULL("Argument pSrc2 cannot be null.", cImageUtils::Sub(&fXYZ, none)),
                TM_ARG("Argument pSrc1" + width + "pSrc2->fWidth.", cImageUtils::Sub(&fXYZ, &fXYZSmall)),
                TM_ARG("Argument pSrc1" + height + "pSrc2->fHeight.", cImageUtils::Sub(&fXYZ, &fXYZLow))});
  ExpectChecks(prefix + "Mul(" + xyz + ",const float)",
               {TM_NULL("Argument pXYZ32 cannot be null.", cImageUtils::Mul(none, 1.0f))});
  ExpectChecks(
      prefix + "Mul(const " + xyz + "," + xyz + ",const float)",
      {TM_NULL("Argument pSrc cannot be null.", cImageUtils::Mul(none, none, 1.0f)),
       TM_NULL("Argument pDst cannot be null.", cImageUtils::Mul(&fXYZ, none, 1.0f)),
       TM_ARG("Argument pSrc" + width + "pDst->fWidth.", cImageUtils::Mul(&fXYZ, &fXYZSmall, 1.0f))});
  ExpectChecks(
      prefix + "Mul(const " + xyz + ",const " + xyz + "," + xyz + ")",
      {TM_NULL("Argument pSrc1 cannot be null.", cImageUtils::Mul(none, none, none)),
       TM_NULL("Argument pSrc2 cannot be null.", cImageUtils::Mul(&fXYZ, none, none)),
       TM_NULL("Argument pDst cannot be null.", cImageUtils::Mul(&fXYZ, &fXYZ, none)),
       TM_ARG("Argument pSrc1" + width + "pDst->fWidth.", cImageUtils::Mul(&fXYZSmall, &fXYZSmall, &fXYZ)),
       TM_ARG("Argument pSrc2" + height + "pDst->fHeight.", cImageUtils::Mul(&fXYZ, &fXYZLow, &fXYZ))});
  ExpectChecks(prefix + "Fill(" + xyz + ",float,float,float)",
               {TM_NULL("Argument pXYZ32 cannot be null.", cImageUtils::Fill(none, 1.0f, 1.0f, 1.0f))});
  cBitmapBGR8* const none8 = nullptr;
  ExpectChecks(prefix + "Fill(class TmEngine::cBitmapBGR8 *,unsigned char,unsigned char,unsigned char)",
               {TM_NULL("Argument pBGR cannot be null.", cImageUtils::Fill(none8, 1, 1, 1))});
  ExpectChecks(
      "double __cdecl TmEngine::cImageUtils::Diff(const class TmEngine::cBitmapBGR8 *,const class "
      "TmEngine::cBitmapBGR8 *)",
      {TM_NULL("Argument pSrc1 cannot be null.", cImageUtils::Diff(none8, none8)),
       TM_ARG("Argument pSrc1" + width + "pSrc2->fWidth.", cImageUtils::Diff(&f8, &f8Small))});
}

TEST_F(cImageUtilsMore, ScalesEveryCodeThereAndBack) {
  auto codes8 = std::make_unique<cBitmapBGR8>(256, 1, kSpace);
  auto codes16 = std::make_unique<cBitmapBGR16>(65536, 1, kSpace);
  for (int i = 0; i < 3 * 256; ++i) codes8->GetBitmapData()[i] = static_cast<unsigned char>(i / 3);
  for (int i = 0; i < 3 * 65536; ++i) codes16->GetBGR16Data()[i] = static_cast<unsigned short>(i / 3);
  const std::unique_ptr<cBitmapXYZ32> floats8(cImageUtils::BGR8ToBGR32(codes8.get()));
  const std::unique_ptr<cBitmapXYZ32> floats16(cImageUtils::BGR16ToBGR32(codes16.get()));
  const std::unique_ptr<cBitmapBGR8> back8(cImageUtils::BGR32ToBGR8(floats8.get(), kSpace));
  const std::unique_ptr<cBitmapBGR16> back16(cImageUtils::BGR32ToBGR16(floats16.get(), kSpace));
  EXPECT_EQ(cImageUtils::MaxDiff(codes8.get(), back8.get()), 0);
  EXPECT_EQ(cImageUtils::MaxDiff(codes16.get(), back16.get()), 0);

  // Through the colour space a code may come back one lower: tables truncate.
  const std::unique_ptr<cBitmapXYZ32> linear(cImageUtils::BGR8ToBGR32Linear(codes8.get()));
  const std::unique_ptr<cBitmapXYZ32> linear16(cImageUtils::BGR16ToBGR32Linear(codes16.get()));
  const std::unique_ptr<cBitmapBGR8> coded(cImageUtils::BGR32LinearToBGR8(linear.get(), kSpace));
  const std::unique_ptr<cBitmapBGR16> coded16(cImageUtils::BGR32LinearToBGR16(linear16.get(), kSpace));
  EXPECT_LE(cImageUtils::MaxDiff(codes8.get(), coded.get()), 1);
  EXPECT_LE(cImageUtils::MaxDiff(codes16.get(), coded16.get()), 13);  // 12.92 codes a table entry near black
  EXPECT_EQ(coded16->GetBGR16Data()[3 * 65535], 65535);

  const float nan = std::numeric_limits<float>::quiet_NaN();
  for (const auto& [value, code8, code16] :
       {std::tuple{-0.1f, 0, 0}, {2.0f, 255, 65535}, {0.99999f, 254, 65534}, {nan, 0, 0}}) {
    cImageUtils::Fill(&fXYZ, value, value, value);
    cImageUtils::BGR32ToBGR8(&fXYZ, &f8);
    cImageUtils::BGR32ToBGR16(&fXYZ, &f16);
    EXPECT_EQ(f8.GetBitmapData()[0], code8) << value;
    EXPECT_EQ(f16.GetBGR16Data()[0], code16) << value;
  }
  EXPECT_THROW(cImageUtils::BGR32ToBGR8(&fXYZ, static_cast<eColorSpaceID>(9)), cArgumentException);
  EXPECT_EQ(ExpectThrow<cArgumentNullException>([] { cImageUtils::BGR32LinearToBGR16(nullptr, kSpace); },
                                                "Argument pSrcBGR32 cannot be null."),
            "class TmEngine::cBitmapBGR16 *__cdecl TmEngine::cImageUtils::BGR32LinearToBGR16(const class "
            "TmEngine::cBitmapXYZ32 *,enum TmEngine::eColorSpaceID)");
  EXPECT_EQ(ExpectThrow<cArgumentException>([&] { cImageUtils::BGR8ToBGR32(&f8, &fXYZSmall); },
                                            "Argument pDstBGR32->fWidth must be equal to pSrcBGR8->fWidth."),
            "void __cdecl TmEngine::cImageUtils::BGR8ToBGR32(const class TmEngine::cBitmapBGR8 *,class "
            "TmEngine::cBitmapXYZ32 *)");
}

}  // namespace
}  // namespace TmEngine
