#include "engine/color/cTransfer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "tests/ExceptionCheck.h"
#include "tests/Numbers.h"

namespace TmEngine {
namespace {

TEST(cTransfer, EvaluatesAsItsFormulaDoes) {
  unsigned short two[] = {0, 65535};
  unsigned short three[] = {1000, 65535, 20000};
  const cTransferGamma gamma(2.2f), encode18(1.8f), decode18(1.0f / 1.8f), square(0.5f);
  const cTransferGamma zero(0.0f);  // an infinite exponent
  const cTransfer_sRGBToLinear decode;
  const cTransferLinearTo_sRGB encode;
  const cTransfer_Table straight(two, 2), bent(three, 3);
  const float first = 1000 / 65535.0f, last = 20000 / 65535.0f;
  const float aboveEncoded = std::nextafter(0.04045f, 1.0f), aboveLinear = std::nextafter(0.0031308f, 1.0f);
  const struct {
    const cTransfer& fTransfer;
    float fX;
    double fY;
    double fTolerance = 0.0;
  } cases[] = {{gamma, 0.3f, std::pow(0.3f, 1.0 / double{2.2f})},
               {encode18, 0.5f, 0.6804, 5e-5},
               {decode18, 0.5f, 0.2872, 5e-5},
               {square, 3.0f, 9.0},
               {zero, 0.5f, 0.0},
               {gamma, -0.5f, kNaN},
               {decode, -0.5f, -0.5f / 12.92f},
               {decode, 0.04045f, 0.04045f / 12.92f},
               {decode, aboveEncoded, std::pow((aboveEncoded + 0.055) / 1.055, 2.4)},
               {decode, 0.5f, 0.21404114f},
               {decode, 1.0f, 1.0},
               {decode, kNaN, kNaN},
               {encode, -0.5f, -6.46f},
               {encode, 0.0031308f, 0.0031308f * 12.92f},
               {encode, aboveLinear, std::pow(aboveLinear, 1 / 2.4) * 1.055 - 0.055},
               {encode, 0.21404114f, 0.5},
               {encode, 1.0f, 1.0},
               {encode, kNaN, kNaN},
               {straight, 0.25f, 0.25},
               {straight, -3.0f, 0.0},
               {straight, 7.0f, 1.0},
               {bent, -kInfinity, first},
               {bent, kNaN, first},
               {bent, 1e-45f, first},
               {bent, 0.25f, 0.5f * first + 0.5f * 1.0f},
               {bent, 0.5f, 1.0},
               {bent, std::nextafter(1.0f, 0.0f), 0x1p-23f * 1.0f + (1.0f - 0x1p-23f) * last},
               {bent, kInfinity, last}};
  for (const auto& row : cases) {
    const float y = row.fTransfer.Evaluate(row.fX);
    if (std::isnan(row.fY)) {
      EXPECT_TRUE(std::isnan(y)) << row.fX;
    } else {
      EXPECT_NEAR(y, static_cast<float>(row.fY), row.fTolerance) << "row " << &row - cases;
    }
  }
  // Just above the thresholds the two parts of each curve differ, so that a wrong branch shows.
  EXPECT_NE(decode.Evaluate(aboveEncoded), aboveEncoded / 12.92f);
  EXPECT_NE(encode.Evaluate(aboveLinear), aboveLinear * 12.92f);
}

TEST(cTransfer_Table, ChecksItsArguments) {
  const char kSignature[] = "__cdecl TmEngine::cTransfer_Table::cTransfer_Table(unsigned short *,int)";
  unsigned short entry = 0;
  const auto make = [&](unsigned short* pTable, int pSize) { cTransfer_Table(pTable, pSize).Evaluate(0.0f); };
  EXPECT_EQ(ExpectThrow<cArgumentNullException>([&] { make(nullptr, 1); }, "Argument pTable cannot be null.",
                                                ".\\cTransfer.cpp"),
            kSignature);
  for (int size : {1, 0, std::numeric_limits<int>::min()}) {
    ExpectChecks(kSignature, {TM_ARG("Argument pTableSize must be greater than 1.", make(&entry, size))});
  }
}

TEST(cTransfer, ClonesOutliveTheirSource) {
  unsigned short samples[] = {5, 60000, 300};
  const cTransfer* sources[] = {new cTransferGamma(1.7f), new cTransfer_sRGBToLinear,
                                new cTransferLinearTo_sRGB, new cTransfer_Table(samples, 3)};
  samples[1] = 0;  // the table has its own copy
  for (const cTransfer* source : sources) {
    const std::unique_ptr<cTransfer> clone(source->Clone());
    const cTransfer& cloned = *clone;
    EXPECT_EQ(typeid(*source), typeid(cloned));
    const float low = source->Evaluate(0.3f), high = source->Evaluate(0.7f);
    EXPECT_NE(low, high);
    delete source;
    EXPECT_EQ(clone->Evaluate(0.3f), low);
    EXPECT_EQ(clone->Evaluate(0.7f), high);
  }
}

}  // namespace
}  // namespace TmEngine
