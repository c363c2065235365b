#include "engine/cTransferLUT.h"

#include <cstddef>
#include <limits>

#include "engine/TmCheck.h"

namespace TmEngine {

static constexpr char kSourceFile[] = ".\\cTransfer.cpp";  // hosts know the tables as part of that source

namespace {

constexpr char kNullTransfer[] = "Argument pTransfer cannot be null.";

// Position of an entry in [0, 1]: a division, since the reciprocal gives other bits.
float SamplePosition(std::size_t pIndex, std::size_t pEntries) {
  return static_cast<float>(pIndex) / static_cast<float>(pEntries - 1);
}

template <std::size_t kEntries>
void FillDecoding(const cTransfer& pTransfer, float (&pTable)[kEntries]) {
  for (std::size_t i = 0; i < kEntries; ++i) pTable[i] = SamplePosition(i, kEntries);
  pTransfer.EvaluateRow(pTable, pTable, static_cast<int>(kEntries));
}

// Truncates, and keeps the low bits of values outside the sample's range.
template <class tSample, std::size_t kEntries>
void FillEncoding(const cTransfer& pTransfer, tSample (&pTable)[kEntries]) {
  constexpr float kWhite = std::numeric_limits<tSample>::max();
  constexpr std::size_t kRun = 256;
  static_assert(kEntries % kRun == 0);
  for (std::size_t start = 0; start < kEntries; start += kRun) {
    float values[kRun];
    for (std::size_t i = 0; i < kRun; ++i) values[i] = SamplePosition(start + i, kEntries);
    pTransfer.EvaluateRow(values, values, static_cast<int>(kRun));
    for (std::size_t i = 0; i < kRun; ++i)
      pTable[start + i] = static_cast<tSample>(TruncateToInt64(values[i] * kWhite));
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
