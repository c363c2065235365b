#include "engine/color/cTransferLUT.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "tests/ExceptionCheck.h"
#include "tests/Numbers.h"

namespace TmEngine {
namespace {

// fScale * x + fOffset: any value at any entry.
struct sLine : public cTransfer {
  sLine(float pScale, float pOffset) : fScale(pScale), fOffset(pOffset) {}
  cTransfer* Clone() const override { return nullptr; }
  float Evaluate(float pX) const override { return fScale * pX + fOffset; }
  float fScale, fOffset;
};

TEST(cTransferLUT, DecodesEveryCodeAsTheTransferDoes) {
  cTransfer_sRGBToLinear decode;
  const auto bytes = std::make_unique<cTransferLUT_I8F32>(&decode);
  const auto words = std::make_unique<cTransferLUT_I16F32>(&decode);
  for (int i = 0; i < 256; ++i) {
    ASSERT_EQ(bytes->GetTable()[i], decode.Evaluate(static_cast<float>(i) / 255.0f)) << i;
    ASSERT_EQ(words->GetTable()[257 * i], decode.Evaluate(static_cast<float>(257 * i) / 65535.0f)) << i;
  }
  sLine identity(1.0f, 0.0f);
  words->BuildCache(&identity);  // rebuilt in full
  for (int i = 0; i < kTableSize; ++i) ASSERT_EQ(words->GetTable()[i], static_cast<float>(i) / 65535.0f) << i;
}

TEST(cTransferLUT, EncodesByTruncation) {
  cTransferLinearTo_sRGB encode;
  const auto bytes = std::make_unique<cTransferLUT_F32I8>(&encode);
  const auto words = std::make_unique<cTransferLUT_F32I16>(&encode);
  EXPECT_EQ(bytes->GetTable()[0], 0);
  EXPECT_EQ(bytes->GetTable()[65535], 255);
  int aboveHalf = 0;
  for (int i = 0; i < kTableSize; ++i) {
    const float exact = encode.Evaluate(static_cast<float>(i) / 65535.0f) * 255.0f;
    const float code = bytes->GetTable()[i];
    ASSERT_TRUE(code <= exact && exact < code + 1.0f) << i;
    if (exact - code > 0.5f) ++aboveHalf;
  }
  EXPECT_GT(aboveHalf, 20000);  // where rounding would give the next code
  sLine identity(1.0f, 0.0f);
  words->BuildCache(&identity);
  for (int i = 0; i < kTableSize; ++i) ASSERT_EQ(words->GetTable()[i], i);
  sLine justBelow(0.0f, (100.0f - 0.0001f) / 65535.0f);
  words->BuildCache(&justBelow);
  EXPECT_EQ(words->GetTable()[0], 99);
}

TEST(cTransferLUT, KeepsTheLowBitsOfWhatDoesNotFit) {
  const struct {
    float fValue;  // of the transfer
    int fByte, fWord;
  } cases[] = {{-0.5f / 255.0f, 0, 65408}, {-1.0f, 1, 1},      {256.0f / 255.0f, 0, 256},
               {2.0f, 254, 65534},         {0x1p40f, 0, 0},    {0x1p63f, 0, 0},
               {kInfinity, 0, 0},          {-kInfinity, 0, 0}, {kNaN, 0, 0}};
  for (const auto& row : cases) {
    sLine constant(0.0f, row.fValue);
    EXPECT_EQ(std::make_unique<cTransferLUT_F32I8>(&constant)->GetTable()[77], row.fByte) << row.fValue;
    EXPECT_EQ(std::make_unique<cTransferLUT_F32I16>(&constant)->GetTable()[77], row.fWord) << row.fValue;
  }
  EXPECT_EQ(TruncateToInt64(-0x1p63f), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(TruncateToInt64(0x1.fffffep62f), 0x7fffff8000000000);
}

TEST(cTransferLUT, IsIndexedByClampedValues) {
  const float belowOne = std::nextafter(1.0f, 0.0f);
  for (float value : {-kInfinity, -0.0001f, 0.0f, kNaN}) EXPECT_EQ(UnitToIndex(value), 0) << value;
  for (float value : {1.0f, 1.0000001f, 1e30f, kInfinity}) EXPECT_EQ(UnitToIndex(value), 65535) << value;
  EXPECT_EQ(UnitToIndex(belowOne), 65534);
  EXPECT_EQ(UnitToIndex(0.5f), 32767);
}

template <class tTable>
void ExpectNullChecks(const std::string& pName) {
  const char message[] = "Argument pTransfer cannot be null.";
  const std::string scope = "__cdecl TmEngine::" + pName + "::", parameters = "(class TmEngine::cTransfer *)";
  ExpectChecks(scope + pName + parameters, {TM_NULL(message, std::make_unique<tTable>(nullptr))});
  sLine line(0.25f, 0.5f);
  const auto table = std::make_unique<tTable>(&line);
  const auto before = table->GetTable()[0];
  EXPECT_EQ(
      ExpectThrow<cArgumentNullException>([&] { table->BuildCache(nullptr); }, message, ".\\cTransfer.cpp"),
      "void " + scope + "BuildCache" + parameters);
  EXPECT_EQ(table->GetTable()[0], before);
}

TEST(cTransferLUT, NamesTheFunctionThatGotNoTransfer) {
  ExpectNullChecks<cTransferLUT_I8F32>("cTransferLUT_I8F32");
  ExpectNullChecks<cTransferLUT_I16F32>("cTransferLUT_I16F32");
  ExpectNullChecks<cTransferLUT_F32I8>("cTransferLUT_F32I8");
  ExpectNullChecks<cTransferLUT_F32I16>("cTransferLUT_F32I16");
}

}  // namespace
}  // namespace TmEngine
