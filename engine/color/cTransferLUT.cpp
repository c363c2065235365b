#include "engine/color/cTransferLUT.h"

#include <limits>

#include "engine/base/StageFlags.h"

namespace TmEngine {

namespace {

// Position of an entry in [0, 1]: a division, since the reciprocal gives other bits.
float SamplePosition(int pIndex, int pEntries) {
  return static_cast<float>(pIndex) / static_cast<float>(pEntries - 1);
}

constexpr int kRun = 256;  // entries between two polls

/// False when stopped.
template <int kEntries>
bool FillDecoding(const cTransfer& pTransfer, float (&pTable)[kEntries], const bool* pCancel) {
  static_assert(kEntries % kRun == 0);
  for (int start = 0; start < kEntries; start += kRun) {
    if (IsSet(pCancel)) return false;
    float* const run = pTable + start;
    for (int i = 0; i < kRun; ++i) run[i] = SamplePosition(start + i, kEntries);
    pTransfer.EvaluateRow(run, run, kRun);
  }
  return true;
}

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

/// False when stopped.
template <class tSample, int kEntries>
bool FillEncoding(const cTransfer& pTransfer, tSample (&pTable)[kEntries], const bool* pCancel) {
  constexpr float kWhite = std::numeric_limits<tSample>::max();
  static_assert(kEntries % kRun == 0);
  for (int start = 0; start < kEntries; start += kRun) {
    if (IsSet(pCancel)) return false;
    float values[kRun];
    for (int i = 0; i < kRun; ++i) values[i] = SamplePosition(start + i, kEntries);
    pTransfer.EvaluateRow(values, values, kRun);
    for (float& value : values) value *= kWhite;
    StoreSamples(values, pTable + start);
  }
  return true;
}

}  // namespace

cTransferLUT::~cTransferLUT() = default;

cTransferLUT_I8F32::cTransferLUT_I8F32(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cTransferLUT_I8F32::cTransferLUT_I8F32(class TmEngine::cTransfer *)";
  CheckTransfer(pTransfer, kSignature);
  BuildCache(pTransfer);
}

cTransferLUT_I8F32::~cTransferLUT_I8F32() = default;

void cTransferLUT_I8F32::BuildCache(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cTransferLUT_I8F32::BuildCache(class TmEngine::cTransfer *)";
  CheckTransfer(pTransfer, kSignature);
  Fill(*pTransfer, nullptr);
}

bool cTransferLUT_I8F32::Fill(const cTransfer& pTransfer, const bool* pCancel) {
  return FillDecoding(pTransfer, fTable, pCancel);
}

cTransferLUT_I16F32::cTransferLUT_I16F32(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cTransferLUT_I16F32::cTransferLUT_I16F32(class TmEngine::cTransfer *)";
  CheckTransfer(pTransfer, kSignature);
  BuildCache(pTransfer);
}

cTransferLUT_I16F32::~cTransferLUT_I16F32() = default;

void cTransferLUT_I16F32::BuildCache(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cTransferLUT_I16F32::BuildCache(class TmEngine::cTransfer *)";
  CheckTransfer(pTransfer, kSignature);
  Fill(*pTransfer, nullptr);
}

bool cTransferLUT_I16F32::Fill(const cTransfer& pTransfer, const bool* pCancel) {
  return FillDecoding(pTransfer, fTable, pCancel);
}

cTransferLUT_F32I8::cTransferLUT_F32I8(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cTransferLUT_F32I8::cTransferLUT_F32I8(class TmEngine::cTransfer *)";
  CheckTransfer(pTransfer, kSignature);
  BuildCache(pTransfer);
}

cTransferLUT_F32I8::~cTransferLUT_F32I8() = default;

void cTransferLUT_F32I8::BuildCache(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cTransferLUT_F32I8::BuildCache(class TmEngine::cTransfer *)";
  CheckTransfer(pTransfer, kSignature);
  Fill(*pTransfer, nullptr);
}

bool cTransferLUT_F32I8::Fill(const cTransfer& pTransfer, const bool* pCancel) {
  return FillEncoding(pTransfer, fTable, pCancel);
}

cTransferLUT_F32I16::cTransferLUT_F32I16(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cTransferLUT_F32I16::cTransferLUT_F32I16(class TmEngine::cTransfer *)";
  CheckTransfer(pTransfer, kSignature);
  BuildCache(pTransfer);
}

cTransferLUT_F32I16::~cTransferLUT_F32I16() = default;

void cTransferLUT_F32I16::BuildCache(cTransfer* pTransfer) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cTransferLUT_F32I16::BuildCache(class TmEngine::cTransfer *)";
  CheckTransfer(pTransfer, kSignature);
  Fill(*pTransfer, nullptr);
}

bool cTransferLUT_F32I16::Fill(const cTransfer& pTransfer, const bool* pCancel) {
  return FillEncoding(pTransfer, fTable, pCancel);
}

template <class tTable>
std::unique_ptr<tTable> BuildTable(cTransfer* pTransfer, const bool* pCancel) {
  if (pTransfer == nullptr) return std::make_unique<tTable>(pTransfer);  // throws
  std::unique_ptr<tTable> table(new tTable);
  if (!table->Fill(*pTransfer, pCancel)) table.reset();
  return table;
}

template std::unique_ptr<cTransferLUT_I8F32> BuildTable(cTransfer* pTransfer, const bool* pCancel);
template std::unique_ptr<cTransferLUT_I16F32> BuildTable(cTransfer* pTransfer, const bool* pCancel);
template std::unique_ptr<cTransferLUT_F32I8> BuildTable(cTransfer* pTransfer, const bool* pCancel);
template std::unique_ptr<cTransferLUT_F32I16> BuildTable(cTransfer* pTransfer, const bool* pCancel);

}  // namespace TmEngine
