#include "engine/image/cBitmapLDR.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>

#include "engine/color/cTransfer.h"
#include "engine/color/cTransferLUT.h"
#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapBGR8.h"
#include "engine/image/cBitmapXYZ32.h"
#include "engine/image/cImageUtils.h"
#include "tests/StderrCapture.h"
#include "tests/engine/image/BitmapTestTools.h"

namespace TmEngine {
namespace {

const eColorSpaceID kID = eColorSpaceID_sRGB;
const eColorSpaceID kNoID = static_cast<eColorSpaceID>(3);
const std::string kFreeLine = "Freeing via FreeBitmapData\n";

template <class tCall>
std::string StandardErrorOf(const tCall& pCall) {
  cStderrCapture capture;
  pCall();
  return capture.Text();
}

TEST(cBitmapLDR, ConstructorsCheckTheirArgumentsInOrder) {
  const auto check = [](const std::string& pName, auto pMake) {
    ExpectChecks("__cdecl TmEngine::" + pName + "::" + pName + "(int,int,class TmEngine::cColorSpace *)",
                 {TM_ARG("Argument pWidth must be greater than zero.", pMake(0, 0)),
                  TM_ARG("Argument pHeight must be greater than zero.", pMake(1, 0)),
                  TM_NULL("Argument pReferentColorSpace cannot be null.", pMake(1, 1))});
  };
  cColorSpace* const none = nullptr;
  check("cBitmapBGR8", [=](int w, int h) { cBitmapBGR8(w, h, none); });
  check("cBitmapBGR16", [=](int w, int h) { cBitmapBGR16(w, h, none); });
}

TEST(cBitmapLDR, ImagesFromDataCheckTheirArgumentsInOrder) {
  const auto check = [](const std::string& pSignature, const std::string& pLeast, const std::string& pName,
                        auto pMake) {
    const std::string width = "Argument pFromWidth must be greater than zero.";
    const std::string stride = "Argument pFromStride must be greater than or equal to " + pLeast;
    ExpectChecks(pSignature + "(int,int,int,unsigned char *,enum TmEngine::eColorSpaceID)",
                 {TM_ARG(width, pMake(0, 0, -1)), TM_ARG(width, pMake(2, 0, -1)),
                  TM_ARG(stride, pMake(2, 1, 5)), TM_ARG(stride, pMake(1 << 30, 1, 1 << 30)),
                  TM_NULL("Argument " + pName + " cannot be null.", pMake(2, 1, 6))});
  };
  check("__cdecl TmEngine::cBitmapBGR8::cBitmapBGR8", "3*pFromWidth.", "pFromBGR8",
        [](int w, int h, int s) { cBitmapBGR8(w, h, s, nullptr, kNoID); });
  check("class TmEngine::cBitmapBGR16 *__cdecl TmEngine::cBitmapBGR16::FromBGR16Data", "2*3*pFromWidth.",
        "pFromBGR16", [](int w, int h, int s) { cBitmapBGR16::FromBGR16Data(w, h, s, nullptr, kNoID); });
  unsigned char pixels[12] = {1, 2, 3};  // a stride between the two bounds fails in the copy
  const std::string copy = "Argument pFromStride must be greater than or equal to 3*this->fWidth.";
  ExpectChecks("void __cdecl TmEngine::cBitmapBGR16::CopyFromBGR16(int,int,int,unsigned char *)",
               {TM_ARG(copy, cBitmapBGR16::FromBGR16Data(2, 1, 6, pixels, kID)),
                TM_ARG(copy, cBitmapBGR16::FromBGR16Data(2, 1, 11, pixels, kID))});
  const std::unique_ptr<cBitmapBGR16> whole(cBitmapBGR16::FromBGR16Data(2, 1, 12, pixels, kID));
  EXPECT_EQ(std::memcmp(whole->GetBitmapData(), pixels, 12), 0);
}

TEST(cBitmapLDR, FailingConstructorsFreeSilentlyAndImagesWriteOneLine) {
  unsigned char pixels[3] = {1, 2, 3};
  EXPECT_EQ(StandardErrorOf([&] {
              EXPECT_THROW(cBitmapBGR8(1, 1, kNoID), cArgumentException);
              EXPECT_THROW(cBitmapBGR8(1, 1, 3, pixels, kNoID), cArgumentException);
              EXPECT_THROW(cBitmapBGR16(1, 1, kNoID), cArgumentException);
            }),
            "");
  EXPECT_EQ(StandardErrorOf([&] { cBitmapBGR8(1, 1, 3, pixels, kID); }), kFreeLine);
  EXPECT_EQ(StandardErrorOf([] { cBitmapBGR16(1, 1, kID); }), "");
  EXPECT_EQ(StandardErrorOf([] { EXPECT_ANY_THROW(cBitmapBGR8::FreeBitmapData(nullptr)); }), kFreeLine);
  EXPECT_EQ(StandardErrorOf([&] {
              cBitmapBGR8 bitmap(1, 1, 3, pixels, kID);
              unsigned char* const block = bitmap.TakeBitmapData();
              EXPECT_EQ(block[2], 3);
              std::free(block);
              EXPECT_EQ(bitmap.GetBitmapData(), nullptr);
              EXPECT_THROW(bitmap.CopyToBGR8(pixels, 1, 1, 3), cArgumentException);
            }),
            "");
}

TEST(cBitmapLDR, TakesRedFirstSamplesWithAHalvedStride) {
  unsigned short source[16];
  for (unsigned short i = 0; i < 16; ++i) source[i] = static_cast<unsigned short>(1000 + i);
  for (const int stride : {14, 15}) {  // seven samples both
    cBitmapBGR16 bitmap(2, 2, kID);
    std::memset(bitmap.GetBitmapData(), 0xEE, 96);
    bitmap.CopyFromLittleEndianRGB16(2, 2, stride, source);
    const unsigned short* const data = bitmap.GetBGR16Data();
    const int expected[] = {1002, 1001, 1000, 1005, 1004, 1003, 0xEEEE};
    for (int i = 0; i < 7; ++i) {
      EXPECT_EQ(data[i], expected[i]);
      EXPECT_EQ(data[12 + i], i < 6 ? expected[i] + 7 : 0xEEEE);
    }
  }
}

TEST(cBitmapLDR, CopiesOutPixelsOnly) {
  unsigned char source[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  cBitmapBGR8 bitmap(2, 2, 6, source, kID);
  for (const int stride : {6, 7, 12}) {  // 12 is the image's own, yet the padding stays
    unsigned char to[24];
    std::memset(to, 0xEE, sizeof to);
    bitmap.CopyToBGR8(to, 2, 2, stride);
    EXPECT_EQ(std::memcmp(to, source, 6), 0);
    EXPECT_EQ(std::memcmp(to + stride, source + 6, 6), 0);
    EXPECT_EQ(to[stride + 6], 0xEE);
    EXPECT_EQ(to[6], stride > 6 ? 0xEE : source[6]);
  }
}

TEST(cBitmapLDR, OwnsAColourSpaceOfItsOwn) {
  std::unique_ptr<cColorSpace> adobe(cColorSpace::FromID(eColorSpaceID_AdobeRGB98));
  cBitmapBGR16 bitmap(1, 1, adobe.get());
  EXPECT_NE(bitmap.GetColorSpace(), adobe.get());
  const std::string name = adobe->GetName();
  adobe.reset();
  EXPECT_EQ(bitmap.GetColorSpace()->GetName(), name);
  bitmap.SetColorSpace(bitmap.GetColorSpace());
  EXPECT_EQ(bitmap.GetColorSpace()->GetName(), name);
  cColorSpace* const none = nullptr;
  ExpectChecks("void __cdecl TmEngine::cBitmapLDR::SetColorSpace(class TmEngine::cColorSpace *)",
               {TM_NULL("Argument pColorSpace cannot be null.", bitmap.SetColorSpace(none))});
  EXPECT_THROW(bitmap.SetColorSpace(kNoID), cArgumentException);
  EXPECT_EQ(bitmap.GetColorSpace()->GetName(), name);
  bitmap.SetColorSpace(eColorSpaceID_ProPhotoRGB);
  EXPECT_NE(bitmap.GetColorSpace()->GetName(), name);
}

TEST(cBitmapLDR, ConversionsCheckTheirArgumentsInOrder) {
  cBitmapBGR8 bgr8(2, 2, kID), narrowLow8(1, 1, kID), low8(2, 1, kID);
  cBitmapBGR16 bgr16(2, 2, kID);
  cBitmapXYZ32 same(2, 2), narrowLow(1, 1), low(2, 1);
  const std::string begin = "void __cdecl TmEngine::cBitmapBGR", xyz = "XYZ32(class TmEngine::cBitmapXYZ32 *";
  const std::string table = xyz + ",class TmEngine::cTransferLUT_", end = " *,class TmEngine::cMatrix33)";
  const auto check = [&](const std::string& pMember, const std::string& pName, const auto& pCall) {
    ExpectPartnerChecks(begin + pMember, pName, "this", narrowLow, low, pCall);
  };
  const auto checkTable = [&](const std::string& pMember, const std::string& pName, const auto& pCall) {
    check(pMember, pName, pCall);
    ExpectChecks(begin + pMember, {TM_NULL("Argument pCustomTransferLUT cannot be null.", pCall(&same))});
  };
  using tF = cBitmapXYZ32;
  const cMatrix33 m;
  check("8::To" + xyz + ")", "pToXYZ32", [&](tF* p) { bgr8.ToXYZ32(p); });
  check("16::To" + xyz + ")", "pToXYZ32", [&](tF* p) { bgr16.ToXYZ32(p); });
  check("8::From" + xyz + ")", "pFromXYZ32", [&](tF* p) { bgr8.FromXYZ32(p); });
  check("16::From" + xyz + ")", "pFromXYZ32", [&](tF* p) { bgr16.FromXYZ32(p); });
  checkTable("8::To" + table + "I8F32" + end, "pToXYZ32", [&](tF* p) { bgr8.ToXYZ32(p, nullptr, m); });
  checkTable("8::From" + table + "F32I8" + end, "pFromXYZ32", [&](tF* p) { bgr8.FromXYZ32(p, nullptr, m); });
  checkTable("16::From" + table + "F32I16" + end, "pFromXYZ32",
             [&](tF* p) { bgr16.FromXYZ32(p, nullptr, m); });
  ExpectPartnerChecks(begin + "16::FromBGR8(class TmEngine::cBitmapBGR8 *)", "pFromBGR8", "this", narrowLow8,
                      low8, [&](cBitmapBGR8* p) { bgr16.FromBGR8(p); });
  ExpectPartnerChecks(begin + "16::ToBGR8(class TmEngine::cBitmapBGR8 *)", "pToBGR8", "this", narrowLow8,
                      low8, [&](cBitmapBGR8* p) { bgr16.ToBGR8(p); });
}

/// Blue, green, red, white and a grey through D50-relative XYZ and back.
template <class tBitmap, class tSample>
void CheckColours(tSample pWhite, int pDepth) {
  const tSample grey = static_cast<tSample>(pWhite / 5 * 2);
  const tSample colours[5][3] = {
      {pWhite, 0, 0}, {0, pWhite, 0}, {0, 0, pWhite}, {pWhite, pWhite, pWhite}, {grey, grey, grey}};
  const float xyz[5][3] = {{0.14308f, 0.06062f, 0.71417f},
                           {0.38506f, 0.71688f, 0.09710f},
                           {0.43607f, 0.22250f, 0.01393f},
                           {0.96422f, 1.0f, 0.82521f},
                           {0.12817f, 0.13287f, 0.10966f}};
  tBitmap image(5, 1, kID), back(5, 1, kID);
  EXPECT_EQ(image.GetBitDepth(), pDepth);
  tSample* const samples = reinterpret_cast<tSample*>(image.GetBitmapData());
  std::memcpy(samples, colours, sizeof colours);
  cBitmapXYZ32 decoded(5, 1), linear(5, 1);
  image.ToXYZ32(&decoded);
  image.ToBGR32Linear(&linear);
  back.FromXYZ32(&decoded);
  const cTransfer* const toLinear = image.GetColorSpace()->GetToLinear();
  for (int i = 0; i < 15; ++i) {
    EXPECT_NEAR(decoded.GetBitmapData()[i], xyz[i / 3][i % 3], 5e-4) << i;
    EXPECT_EQ(linear.GetBitmapData()[i],
              toLinear->Evaluate(static_cast<float>(samples[i]) / static_cast<float>(pWhite)));
    const int code = reinterpret_cast<tSample*>(back.GetBitmapData())[i];
    EXPECT_NEAR(code, samples[i], pDepth == 8 ? 1 : 40) << i;
  }
  // Adobe RGB has a luminance of green of its own.
  image.SetColorSpace(eColorSpaceID_AdobeRGB98);
  image.ToXYZ32(&decoded);
  EXPECT_NEAR(decoded.GetBitmapData()[4], 0.62567f, 5e-4);
}

TEST(cBitmapLDR, ConvertsColoursThroughItsColourSpace) {
  CheckColours<cBitmapBGR8, unsigned char>(255, 8);
  CheckColours<cBitmapBGR16, unsigned short>(65535, 16);
}

TEST(cBitmapLDR, ConvertsColoursByTablesAndMatricesOfOthers) {
  cTransferGamma asItIs(1.0f);
  cTransferLUT_I8F32 decoding(&asItIs);
  cTransferLUT_F32I8 encoding8(&asItIs);
  cTransferLUT_F32I16 encoding16(&asItIs);
  const cMatrix33 exchange(0, 0, 1, 0, 1, 0, 1, 0, 0);
  cBitmapBGR8 image(1, 1, kID), back(1, 1, kID);
  cBitmapBGR16 wide(1, 1, kID);
  cBitmapXYZ32 decoded(1, 1);
  cImageUtils::Fill(&image, 51, 102, 255);
  image.ToXYZ32(&decoded, &decoding, exchange);
  back.FromXYZ32(&decoded, &encoding8, exchange);
  wide.FromXYZ32(&decoded, &encoding16, exchange);
  for (int i = 0; i < 3; ++i) {
    const int sample = image.GetBitmapData()[i];
    EXPECT_EQ(decoded.GetBitmapData()[i], static_cast<float>(sample) / 255.0f);
    EXPECT_EQ(back.GetBitmapData()[i], sample);
    EXPECT_EQ(wide.GetBGR16Data()[i], 257 * sample);
  }
}

}  // namespace
}  // namespace TmEngine
