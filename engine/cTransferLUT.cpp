#include "engine/cTransferLUT.h"

#include <limits>

#include "engine/TmCheck.h"

namespace TmEngine {

static constexpr char kSourceFile[] = ".\\cTransfer.cpp";  // hosts know the tables as part of that source

namespace {

constexpr char kNullTransfer[] = "Argument pTransfer cannot be null.";

// Position of an entry in [0, 1]: a division, since the reciprocal gives other bits.
float SamplePosition(int pIndex, int pEntries) {
  return static_cast<float>(pIndex) / static_cast<float>(pEntries - 1);
}

template <int kEntries>
void FillDecoding(const cTransfer& pTransfer, float (&pTable)[kEntries]) {
  for (int i = 0; i < kEntries; ++i) pTable[i] = SamplePosition(i, kEntries);
  pTransfer.EvaluateRow(pTable, pTable, kEntries);
}

constexpr int kRun = 256;

// Whether 32 bits hold what each value truncates to.
bool FitInt(const float (&pValues)[kRun]) {
  int misfits = 0;
  for (const float value : pValues) misfits += !(value >= -0x1p31f && value < 0x1p31f);
  return misfits == 0;
}

// Truncates, and keeps the low bits of values outside the sample's range.
template <class tSample>
void StoreSamples(const float (&pValues)[kRun], tSample* pTo) {
  if (FitInt(pValues)) {
    for (int i = 0; i < kRun; ++i) pTo[i] = static_cast<tSample>(static_cast<int>(pValues[i]));
  } else {
    for (int i = 0; i < kRun; ++i) pTo[i] = static_cast<tSample>(TruncateToInt64(pValues[i]));
  }
}

template <class tSample, int kEntries>
void FillEncoding(const cTransfer& pTransfer, tSample (&pTable)[kEntries]) {
  constexpr float kWhite = std::numeric_limits<tSample>::max();
  static_assert(kEntries % kRun == 0);
  for (int start = 0; start < kEntries; start += kRun) {
    float values[kRun];
    for (int i = 0; i < kRun; ++i) values[i] = SamplePosition(start + i, kEntries);
    pTransfer.EvaluateRow(values, values, kRun);
    for (float& value : values) value *= kWhite;
    StoreSamples(values, pTable + start);
  }
}

}  // namespace

cTransferLUT::~cTransferLUT() = default;

cTransferLUT_I8F32::cTransferLUT_I8F32(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cTransferLUT_I8F32::cTransferLUT_I8F32(class TmEngine::cTransfer *)";
  TM_CHECK(pTransfer != nullptr, cArgumentNullException, kNullTransfer);
  BuildCache(pTransfer);
}

cTransferLUT_I8F32::~cTransferLUT_I8F32() = default;

void cTransferLUT_I8F32::BuildCache(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cTransferLUT_I8F32::BuildCache(class TmEngine::cTransfer *)";
  TM_CHECK(pTransfer != nullptr, cArgumentNullException, kNullTransfer);
  FillDecoding(*pTransfer, fTable);
}

cTransferLUT_I16F32::cTransferLUT_I16F32(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cTransferLUT_I16F32::cTransferLUT_I16F32(class TmEngine::cTransfer *)";
  TM_CHECK(pTransfer != nullptr, cArgumentNullException, kNullTransfer);
  BuildCache(pTransfer);
}

cTransferLUT_I16F32::~cTransferLUT_I16F32() = default;

void cTransferLUT_I16F32::BuildCache(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cTransferLUT_I16F32::BuildCache(class TmEngine::cTransfer *)";
  TM_CHECK(pTransfer != nullptr, cArgumentNullException, kNullTransfer);
  FillDecoding(*pTransfer, fTable);
}

cTransferLUT_F32I8::cTransferLUT_F32I8(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cTransferLUT_F32I8::cTransferLUT_F32I8(class TmEngine::cTransfer *)";
  TM_CHECK(pTransfer != nullptr, cArgumentNullException, kNullTransfer);
  BuildCache(pTransfer);
}

cTransferLUT_F32I8::~cTransferLUT_F32I8() = default;

void cTransferLUT_F32I8::BuildCache(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cTransferLUT_F32I8::BuildCache(class TmEngine::cTransfer *)";
  TM_CHECK(pTransfer != nullptr, cArgumentNullException, kNullTransfer);
  FillEncoding(*pTransfer, fTable);
}

cTransferLUT_F32I16::cTransferLUT_F32I16(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cTransferLUT_F32I16::cTransferLUT_F32I16(class TmEngine::cTransfer *)";
  TM_CHECK(pTransfer != nullptr, cArgumentNullException, kNullTransfer);
  BuildCache(pTransfer);
}

cTransferLUT_F32I16::~cTransferLUT_F32I16() = default;

void cTransferLUT_F32I16::BuildCache(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cTransferLUT_F32I16::BuildCache(class TmEngine::cTransfer *)";
  TM_CHECK(pTransfer != nullptr, cArgumentNullException, kNullTransfer);
  FillEncoding(*pTransfer, fTable);
}

}  // namespace TmEngine
