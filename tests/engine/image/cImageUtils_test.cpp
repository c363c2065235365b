#include "engine/image/cImageUtils.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <utility>

#include "engine/color/cTransfer.h"
#include "engine/color/cTransferLUT.h"
#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapBGR8.h"
#include "engine/image/cBitmapXYZ32.h"
#include "tests/Numbers.h"
#include "tests/engine/image/BitmapTestTools.h"

namespace TmEngine {
namespace {

const cMatrix33 kIdentity(1, 0, 0, 0, 1, 0, 0, 0, 1);
const cMatrix33 kDigits(1, 10, 100, 1000, 10000, 100000, 2, 20, 200);
/// Maps (1e8, 1e8, 1) to (1, 0, -1) only when sums are taken from left to right.
const cMatrix33 kCancelling(1, -1, 1, 0, 0, 0, 1, -1, -1);
const float kPad = -77.0f;

/// An image whose padding holds kPad, filled row by row from pSamples.
std::unique_ptr<cBitmapXYZ32> MakeImage(int pWidth, int pHeight, const std::vector<float>& pSamples) {
  auto image = std::make_unique<cBitmapXYZ32>(pWidth, pHeight);
  const int rowFloats = image->GetStride() / 4;
  for (int i = 0; i < rowFloats * ((pHeight + 3) & ~3); ++i) image->GetBitmapData()[i] = kPad;
  for (int y = 0; y < pHeight; ++y) {
    std::memcpy(image->GetBitmapData() + rowFloats * y, pSamples.data() + 3 * pWidth * y,
                sizeof(float) * 3 * static_cast<std::size_t>(pWidth));
  }
  return image;
}

/// The samples of an image, row by row; fails when padding was touched.
std::vector<float> SamplesOf(const cBitmapXYZ32& pImage) {
  std::vector<float> samples;
  const int rowFloats = pImage.GetStride() / 4, used = 3 * pImage.GetWidth();
  for (int y = 0; y < pImage.GetHeight(); ++y) {
    const float* row = pImage.GetBitmapData() + rowFloats * y;
    samples.insert(samples.end(), row, row + used);
    for (int x = used; x < rowFloats; ++x) EXPECT_EQ(row[x], kPad) << "padding at " << x << ", " << y;
  }
  return samples;
}

std::vector<float> Counting(int pCount) {
  std::vector<float> samples;
  for (int i = 0; i < pCount; ++i) samples.push_back(static_cast<float>(i % 10));
  return samples;
}

TEST(cImageUtils, TransformsColoursIntoAnotherImageOrInPlace) {
  for (const int width : {1, 2, 3, 4, 5, 7}) {
    const std::vector<float> from = Counting(3 * width * 2);
    std::vector<float> expected;
    for (std::size_t i = 0; i < from.size(); i += 3) {
      const float sum = from[i] + 10 * from[i + 1] + 100 * from[i + 2];
      expected.insert(expected.end(), {sum, 1000 * sum, 2 * sum});
    }
    const auto source = MakeImage(width, 2, from);
    const auto target = MakeImage(width, 2, Counting(3 * width * 2));
    cImageUtils::ColorTransform(source.get(), target.get(), kDigits);
    EXPECT_EQ(SamplesOf(*target), expected);
    EXPECT_EQ(SamplesOf(*source), from);
    const auto inPlace = MakeImage(width, 2, from);
    cImageUtils::ColorTransform(source.get(), kDigits);
    cImageUtils::TransformInPlace(inPlace.get(), kDigits);
    EXPECT_EQ(SamplesOf(*source), expected);
    EXPECT_EQ(SamplesOf(*inPlace), expected);
    cImageUtils::ColorTransform(source.get(), kIdentity);
    EXPECT_EQ(SamplesOf(*source), expected);
  }
}

TEST(cImageUtils, RoundsEveryProductAndSumsInOrder) {
  const float e = 1.0f / 4096.0f;
  const auto fused =
      MakeImage(1, 1, {1.0f, 1.0f + e, 1.0f});  // (1 + e)^2 rounds to 1 + 2e; fused, e^2 remains
  cImageUtils::TransformInPlace(fused.get(), cMatrix33(-1.0f - 2.0f * e, 1.0f + e, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_EQ(fused->GetBitmapData()[0], 0.0f);
  const auto sums = MakeImage(1, 1, {1e8f, 1e8f, 1.0f});
  cImageUtils::TransformInPlace(sums.get(), kCancelling);
  EXPECT_EQ(SamplesOf(*sums), (std::vector<float>{1.0f, 0.0f, -1.0f}));
}

TEST(cImageUtils, CopiesChannelsDensely) {
  const std::vector<float> from = Counting(18);
  for (const int channel : {0, 1, 2}) {
    const auto image = MakeImage(3, 2, from);
    float dense[7] = {0, 0, 0, 0, 0, 0, kPad};
    cImageUtils::ExtractChannel(image.get(), dense, channel);
    EXPECT_EQ(dense[6], kPad);
    std::vector<float> expected = from;
    for (int i = 0; i < 6; ++i) {
      float& sample = expected[static_cast<std::size_t>(3 * i + channel)];
      EXPECT_EQ(dense[i], sample);
      sample = dense[i] = static_cast<float>(100 + i);
    }
    cImageUtils::ReplaceChannel(dense, image.get(), channel);
    EXPECT_EQ(SamplesOf(*image), expected);
  }
}

TEST(cImageUtils, ClampsAndMeasuresOneChannel) {
  const auto image = MakeImage(2, 2, {1, -0.5f, -9, 2, 0.3f, 9, 3, kNaN, 9, 4, -7, 9});
  EXPECT_EQ(cImageUtils::GetMin(image.get(), 1), -7.0f);
  EXPECT_EQ(cImageUtils::GetMax(image.get(), 1), 0.3f);
  float low = 0, high = 0;
  cImageUtils::GetMinMax(image.get(), 0, low, high);
  EXPECT_EQ(low, 1.0f);
  EXPECT_EQ(high, 4.0f);
  cImageUtils::ClampLow(image.get(), 1, 0.0f);
  std::vector<float> samples = SamplesOf(*image);
  EXPECT_TRUE(std::isnan(std::exchange(samples[7], 0.0f)));
  EXPECT_EQ(samples, (std::vector<float>{1, 0, -9, 2, 0.3f, 9, 3, 0, 9, 4, 0, 9}));
  cImageUtils::ClampLow(image.get(), 0, kNaN);
  EXPECT_EQ(image->GetBitmapData()[0], 1.0f);
  const auto nanFirst = MakeImage(2, 1, {kNaN, 0, 0, 5, 0, 0});
  EXPECT_TRUE(std::isnan(cImageUtils::GetMin(nanFirst.get(), 0)));
  EXPECT_TRUE(std::isnan(cImageUtils::GetMax(nanFirst.get(), 0)));
}

TEST(cImageUtils, StretchesToTheUnitRange) {
  const struct {
    bool fPerChannel;
    std::vector<float> fFrom, fTo;
  } cases[] = {{false, {1, 2, 3, 3, 2, 1}, {0, 0.5f, 1, 1, 0.5f, 0}},
               {false, {0, 10, 40, 4, 20, 40}, {0, 0.25f, 1, 0.1f, 0.5f, 1}},
               {true, {0, 10, 40, 4, 20, 40}, {0, 0, 0.5f, 1, 1, 0.5f}},
               {false, {2, 2, 2, 2, 2, 2}, {0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f}},
               {true, {-5, 2, 7, -4, 2, 8}, {0, 0.5f, 0, 1, 0.5f, 1}}};
  for (const auto& row : cases) {
    const auto image = MakeImage(1, 2, row.fFrom);
    cImageUtils::Normalize(image.get(), row.fPerChannel);
    EXPECT_EQ(SamplesOf(*image), row.fTo);
  }
  const auto withNaN = MakeImage(3, 1, {kNaN, 0, 0, 1, 0, 0, 3, 0, 0});
  cImageUtils::Normalize(withNaN.get(), true);
  EXPECT_TRUE(std::isnan(withNaN->GetBitmapData()[0]));
  EXPECT_EQ(withNaN->GetBitmapData()[3], 0.0f);
  EXPECT_EQ(withNaN->GetBitmapData()[6], 1.0f);
}

TEST(cImageUtils, TakesMeansInDouble) {
  float mean[3];
  cImageUtils::Mean(MakeImage(2, 1, {1, 1e8f, -1, 2, 1, -3}).get(), mean[0], mean[1], mean[2]);
  EXPECT_EQ(mean[0], 1.5f);
  EXPECT_EQ(mean[2], -2.0f);
  cImageUtils::Mean(MakeImage(1, 3, {1e8f, 0, 0, 1, 0, 0, -1e8f, 0, 0}).get(), mean[0], mean[1], mean[2]);
  EXPECT_EQ(mean[0], 1.0f / 3.0f);
}

TEST(cImageUtils, ChannelOperationsCheckArgumentsInOrder) {
  using tU = cImageUtils;
  cBitmapXYZ32 image(2, 2), narrowLow(1, 1), low(2, 1);
  cBitmapXYZ32* const none = nullptr;
  float dense[4];
  const std::string begin = "void __cdecl TmEngine::cImageUtils::", target = "class TmEngine::cBitmapXYZ32 *";
  const std::string source = "const " + target, matrix = ",class TmEngine::cMatrix33)";
  const std::string noSource = "Argument pSrcXYZ32 cannot be null.",
                    noImage = "Argument pXYZ32 cannot be null.";
  const std::string below = "pChannel cannot be less than zero.",
                    above = "pChannel cannot be greater than two.";
  const std::string two = begin + "ColorTransform(" + source + "," + target + matrix;
  ExpectChecks(two,
               {TM_NULL(noSource, tU::ColorTransform(none, none, kIdentity)),
                TM_NULL("Argument pDstXYZ32 cannot be null.", tU::ColorTransform(&image, none, kIdentity))});
  ExpectPartnerChecks(two, "pSrcXYZ32", "pDstXYZ32", narrowLow, low,
                      [&](const cBitmapXYZ32* p) { tU::ColorTransform(p, &image, kIdentity); });
  ExpectChecks(begin + "ColorTransform(" + target + matrix,
               {TM_NULL(noImage, tU::ColorTransform(none, kIdentity))});
  ExpectChecks(begin + "TransformInPlace(" + target + matrix,
               {TM_NULL(noImage, tU::TransformInPlace(none, kIdentity))});
  ExpectChecks(begin + "Normalize(" + target + ",bool)", {TM_NULL(noImage, tU::Normalize(none, true))});
  ExpectChecks(begin + "Mean(" + source + ",float &,float &,float &)",
               {TM_NULL("Argument pSrc cannot be null.", tU::Mean(none, dense[0], dense[1], dense[2]))});
  ExpectChecks(begin + "ExtractChannel(" + source + ",float *,int)",
               {TM_NULL(noSource, tU::ExtractChannel(none, nullptr, -1)),
                TM_NULL("Argument pDest cannot be null.", tU::ExtractChannel(&image, nullptr, -1)),
                TM_STATE(below, tU::ExtractChannel(&image, dense, -1)),
                TM_STATE(above, tU::ExtractChannel(&image, dense, 3))});
  ExpectChecks(begin + "ReplaceChannel(const float *," + target + ",int)",
               {TM_NULL("Argument pDstXYZ32 cannot be null.", tU::ReplaceChannel(nullptr, none, -1)),
                TM_NULL("Argument pSrc cannot be null.", tU::ReplaceChannel(nullptr, &image, -1)),
                TM_STATE(below, tU::ReplaceChannel(dense, &image, -1)),
                TM_STATE(above, tU::ReplaceChannel(dense, &image, 3))});
  const auto check = [&](const std::string& pSignature, const auto& pCall) {
    ExpectChecks(pSignature, {TM_NULL(noSource, pCall(none, -1)), TM_STATE(below, pCall(&image, -1)),
                              TM_STATE(above, pCall(&image, 3))});
  };
  using tI = cBitmapXYZ32;
  check(begin + "ClampLow(" + target + ",int,float)", [](tI* p, int c) { tU::ClampLow(p, c, 0); });
  check(begin + "GetMinMax(" + source + ",int,float &,float &)",
        [&](tI* p, int c) { tU::GetMinMax(p, c, dense[0], dense[1]); });
  check("float __cdecl TmEngine::cImageUtils::GetMin(" + source + ",int)",
        [](tI* p, int c) { tU::GetMin(p, c); });
  check("float __cdecl TmEngine::cImageUtils::GetMax(" + source + ",int)",
        [](tI* p, int c) { tU::GetMax(p, c); });
}

TEST(cImageUtils, ConvertsDepths) {
  cBitmapBGR16 bgr16(8192, 3, eColorSpaceID_sRGB);
  cBitmapBGR8 bgr8(8192, 3, eColorSpaceID_sRGB);
  const int samples = 3 * 3 * 8192;  // every 16-bit value, then some
  for (int i = 0; i < samples; ++i) bgr16.GetBGR16Data()[i] = static_cast<unsigned short>(i);
  cImageUtils::Convert(&bgr16, &bgr8);
  for (int i = 0; i < samples; ++i) ASSERT_EQ(bgr8.GetBitmapData()[i], (i & 65535) / 257) << i;
  cImageUtils::Convert(&bgr8, &bgr16);
  for (int i = 0; i < samples; ++i) ASSERT_EQ(bgr16.GetBGR16Data()[i], (i & 65535) / 257 * 257) << i;
  cBitmapBGR16 odd16(1, 2, eColorSpaceID_sRGB);  // padding stays
  cBitmapBGR8 odd8(1, 2, eColorSpaceID_sRGB);
  std::memset(odd8.GetBitmapData(), 2, 48);
  std::memset(odd16.GetBitmapData(), 0xEE, 96);
  odd16.FromBGR8(&odd8);
  EXPECT_EQ(odd16.GetBGR16Data()[14], 514);
  EXPECT_EQ(odd16.GetBGR16Data()[15], 0xEEEE);
}

/// Samples through tables without a curve: M * (red, green, blue) in the second row, then the way back.
template <class tBitmap, class tSample, class tDecode, class tEncode, class tToFloat, class tFromFloat>
void CheckFloat3(float pWhite, const tToFloat& pToFloat, const tFromFloat& pFromFloat) {
  cTransferGamma linear(1.0f);
  const auto decode = std::make_unique<tDecode>(&linear);
  const auto encode = std::make_unique<tEncode>(&linear);
  const tSample top = static_cast<tSample>(pWhite), half = top / 2;
  const tSample bgr[3] = {top, static_cast<tSample>(top / 5), static_cast<tSample>(top / 3)};
  tBitmap image(1, 2, eColorSpaceID_sRGB);
  tSample* const rows[2] = {reinterpret_cast<tSample*>(image.GetBitmapData()),
                            reinterpret_cast<tSample*>(image.GetBitmapData() + image.GetStride())};
  std::fill(rows[0], rows[0] + 48, half);
  std::copy(bgr, bgr + 3, rows[1]);
  const auto floats = MakeImage(1, 2, Counting(6));
  pToFloat(&image, floats.get(), decode.get(), kDigits);
  const float red = static_cast<float>(bgr[2]) / pWhite, green = static_cast<float>(bgr[1]) / pWhite;
  const std::vector<float> samples = SamplesOf(*floats);
  EXPECT_EQ(samples[3], red * 1.0f + green * 10.0f + 1.0f * 100.0f);
  EXPECT_EQ(samples[4], red * 1000.0f + green * 10000.0f + 1.0f * 100000.0f);
  EXPECT_EQ(samples[5], red * 2.0f + green * 20.0f + 1.0f * 200.0f);

  const auto encoded = [&](const std::vector<float>& pTriples, const cMatrix33& pMatrix) {
    pFromFloat(MakeImage(1, 2, pTriples).get(), &image, encode.get(), pMatrix);
    EXPECT_EQ(rows[0][3] + rows[1][3], 2 * half) << "padding";
    return std::vector<int>{rows[0][0], rows[0][1], rows[0][2], rows[1][0], rows[1][1], rows[1][2]};
  };
  EXPECT_EQ(encoded({-0.5f, -1.0f, 2.0f, 0.5f, 1.0f, -0.0f}, kIdentity),
            (std::vector<int>{top, 0, 0, 0, top, half}));
  EXPECT_EQ(encoded({kNaN, 1, 1, 1e8f, 1e8f, 1}, kCancelling), (std::vector<int>{0, 0, 0, 0, 0, top}));
}

TEST(cImageUtils, DecodesAndEncodesThroughTablesAndMatrices) {
  CheckFloat3<cBitmapBGR8, unsigned char, cTransferLUT_I8F32, cTransferLUT_F32I8>(
      255.0f, cImageUtils::BGR8ToFloat3, cImageUtils::Float3ToBGR8);
  CheckFloat3<cBitmapBGR16, unsigned short, cTransferLUT_I16F32, cTransferLUT_F32I16>(
      65535.0f, cImageUtils::BGR16ToFloat3, cImageUtils::Float3ToBGR16);
}

/// Everything that conversions and measures of pWidth * pHeight pixels give, as numbers.
std::vector<double> Results(int pWidth, int pHeight, const std::vector<float>& pSamples) {
  const auto image = MakeImage(pWidth, pHeight, pSamples);
  std::vector<double> results;
  const auto add = [&](const cBitmapXYZ32& pImage) {
    for (int y = 0; y < pHeight; ++y) {
      const float* const row = pImage.GetBitmapData() + pImage.GetStride() / 4 * y;
      results.insert(results.end(), row, row + 3 * pWidth);
    }
  };
  const auto convert = [&](auto& pCodes, auto& pOther, const auto& pEncode, const auto& pEncodeLinear,
                           const auto& pDecode, const auto& pDecodeLinear) {
    cBitmapXYZ32 back(pWidth, pHeight);
    pEncode(image.get(), &pCodes);
    pDecode(&pCodes, &back);
    add(back);
    pEncodeLinear(image.get(), &pOther);
    pDecodeLinear(&pOther, &back);
    add(back);
    double d[3];
    cImageUtils::Diff(&pCodes, &pOther, d[0], d[1], d[2]);
    results.insert(results.end(), d, d + 3);
    results.push_back(cImageUtils::MaxDiff(&pCodes, &pOther));
    cImageUtils::Diff(image.get(), &back, d[0], d[1], d[2]);
    results.insert(results.end(), d, d + 3);
  };
  using tU = cImageUtils;
  cBitmapBGR8 codes8(pWidth, pHeight, eColorSpaceID_sRGB), other8(pWidth, pHeight, eColorSpaceID_sRGB);
  cBitmapBGR16 codes16(pWidth, pHeight, eColorSpaceID_sRGB), other16(pWidth, pHeight, eColorSpaceID_sRGB);
  convert(
      codes8, other8, [](const auto* a, auto* b) { tU::BGR32ToBGR8(a, b); },
      [](const auto* a, auto* b) { tU::BGR32LinearToBGR8(a, b); },
      [](const auto* a, auto* b) { tU::BGR8ToBGR32(a, b); },
      [](const auto* a, auto* b) { tU::BGR8ToBGR32Linear(a, b); });
  convert(
      codes16, other16, [](const auto* a, auto* b) { tU::BGR32ToBGR16(a, b); },
      [](const auto* a, auto* b) { tU::BGR32LinearToBGR16(a, b); },
      [](const auto* a, auto* b) { tU::BGR16ToBGR32(a, b); },
      [](const auto* a, auto* b) { tU::BGR16ToBGR32Linear(a, b); });
  for (int channel = 0; channel < 3; ++channel) {
    float low = 0, high = 0;
    tU::GetMinMax(image.get(), channel, low, high);
    results.insert(results.end(), {double{low}, double{high}});
  }
  for (const bool perChannel : {true, false}) {
    tU::Normalize(image.get(), perChannel);
    add(*image);
  }
  return results;
}

// Rows longer than a run of pixels, and than a block of sums, beside the same pixels one below the other.
TEST(cImageUtils, LongRowsGiveWhatSinglePixelsGive) {
  constexpr int kPixels = 5003;
  std::vector<float> samples;
  for (int i = 0; i < 3 * kPixels; ++i) {
    samples.push_back(i % 3 == 1 ? 0.3f : static_cast<float>(i * 7919 % 10007) / 8000.0f);
  }
  const std::vector<double> row = Results(kPixels, 1, samples), column = Results(1, kPixels, samples);
  ASSERT_EQ(row.size(), column.size());
  for (std::size_t i = 0; i < row.size(); ++i) ASSERT_EQ(row[i], column[i]) << i;
}

TEST(cImageUtils, OfZerosTheFirstOneCounts) {
  std::vector<float> samples(3 * 70, 1.0f);
  samples[3 * 47] = samples[3 * 48 + 1] = -0.0f;  // the last lane, and the first one of the next vector
  samples[3 * 48] = samples[3 * 47 + 1] = 0.0f;
  const auto image = MakeImage(70, 1, samples);
  EXPECT_TRUE(std::signbit(cImageUtils::GetMin(image.get(), 0)));
  EXPECT_FALSE(std::signbit(cImageUtils::GetMin(image.get(), 1)));
}

// A sum of 16 bits would overflow.
TEST(cImageUtils, SumsTheLargestDistancesOfALongRow) {
  cBitmapBGR8 black(9001, 1, eColorSpaceID_sRGB), white(9001, 1, eColorSpaceID_sRGB);
  cImageUtils::Fill(&black, 0, 0, 0);
  cImageUtils::Fill(&white, 255, 255, 255);
  EXPECT_EQ(cImageUtils::Diff(&black, &white), 3 * 9001 * 255.0);
  cBitmapBGR16 black16(9001, 1, eColorSpaceID_sRGB), white16(9001, 1, eColorSpaceID_sRGB);
  cImageUtils::Fill(&black16, 0, 0, 0);
  cImageUtils::Fill(&white16, 65535, 65535, 65535);
  EXPECT_EQ(cImageUtils::Diff(&black16, &white16), 3 * 9001 * 65535.0);
}

/// An image, one that is narrower and lower, and one that is only lower.
template <class tBitmap, class... tMore>
struct sSizes {
  explicit sSizes(tMore... pMore)
      : fImage(2, 2, pMore...), fNarrowLow(1, 1, pMore...), fLow(2, 1, pMore...) {}
  tBitmap fImage, fNarrowLow, fLow;
};

TEST(cImageUtils, FormatConversionsCheckArgumentsInOrder) {
  using tU = cImageUtils;
  using tF = cBitmapXYZ32;
  using t8 = cBitmapBGR8;
  using t16 = cBitmapBGR16;
  sSizes<tF> f;
  sSizes<t8, eColorSpaceID> b8(eColorSpaceID_sRGB);
  sSizes<t16, eColorSpaceID> b16(eColorSpaceID_sRGB);
  /// Pointers, sizes, then (where pTable names it) the table.
  const auto check = [](const std::string& pMember, const std::string& pFrom, const std::string& pTo,
                        const std::string& pTable, auto& pSource, auto& pTarget, const auto& pCall) {
    const std::string signature = "void __cdecl TmEngine::cImageUtils::" + pMember;
    const auto to = [&](decltype(&pTarget.fImage) p) { pCall(&pSource.fImage, p); };
    ExpectChecks(signature, {TM_NULL("Argument " + pFrom + " cannot be null.", pCall(nullptr, nullptr))});
    ExpectPartnerChecks(signature, pTo, pFrom, pTarget.fNarrowLow, pTarget.fLow, to);
    if (pTable.empty()) return;
    ExpectChecks(signature, {TM_NULL("Argument " + pTable + " cannot be null.", to(&pTarget.fImage))});
  };
  const std::string c = "class TmEngine::", s8 = c + "cBitmapBGR8 *", s16 = c + "cBitmapBGR16 *",
                    sf = c + "cBitmapXYZ32 *", end = " *," + c + "cMatrix33)";
  check("BGR8ToBGR32Linear(const " + s8 + "," + sf + ")", "pSrcBGR8", "pDstBGR32", "", b8, f,
        [](t8* a, tF* b) { tU::BGR8ToBGR32Linear(a, b); });
  check("BGR16ToBGR32Linear(const " + s16 + "," + sf + ")", "pSrcBGR16", "pDstBGR32", "", b16, f,
        [](t16* a, tF* b) { tU::BGR16ToBGR32Linear(a, b); });
  check("BGR8ToFloat3(" + s8 + "," + sf + "," + c + "cTransferLUT_I8F32" + end, "pFromBGR8", "pToXYZ32",
        "pTransferLUT", b8, f, [](t8* a, tF* b) { tU::BGR8ToFloat3(a, b, nullptr, kIdentity); });
  check("BGR16ToFloat3(" + s16 + "," + sf + "," + c + "cTransferLUT_I16F32" + end, "pFromBGR16", "pToXYZ32",
        "pTransferLUT", b16, f, [](t16* a, tF* b) { tU::BGR16ToFloat3(a, b, nullptr, kIdentity); });
  check("Float3ToBGR8(" + sf + "," + s8 + "," + c + "cTransferLUT_F32I8" + end, "pFromXYZ32", "pToBGR8",
        "pTransfer", f, b8, [](tF* a, t8* b) { tU::Float3ToBGR8(a, b, nullptr, kIdentity); });
  check("Float3ToBGR16(" + sf + "," + s16 + "," + c + "cTransferLUT_F32I16" + end, "pFromXYZ32", "pToBGR16",
        "pTransfer", f, b16, [](tF* a, t16* b) { tU::Float3ToBGR16(a, b, nullptr, kIdentity); });
  check("Convert(" + s16 + "," + s8 + ")", "pFromBGR16", "pToBGR8", "", b16, b8,
        [](t16* a, t8* b) { tU::Convert(a, b); });
  check("Convert(" + s8 + "," + s16 + ")", "pFromBGR8", "pToBGR16", "", b8, b16,
        [](t8* a, t16* b) { tU::Convert(a, b); });
  ExpectThrow<cArgumentNullException>([&] { tU::Convert(static_cast<t8*>(nullptr), &b16.fImage); },
                                      "Argument pFromBGR8 cannot be null.", ".\\cImageUtilsFormats.cpp");
}

}  // namespace
}  // namespace TmEngine
