#include "engine/color/cTransfer.h"

#include <algorithm>
#include <cstddef>

#include "engine/base/TmCheck.h"
#include "engine/kernels/Kernels.h"

namespace TmEngine {

static constexpr char kSourceFile[] = ".\\cTransfer.cpp";

namespace {

constexpr float kDecodingKnee = 0.04045f;
constexpr float kEncodingKnee = 0.0031308f;

/// Writes pFinish(x, pBase(x) to the power pExponent) for each x.
template <class tBase, class tFinish>
void PowerRow(const float* pX, float* pTo, int pCount, double pExponent, const tBase& pBase,
              const tFinish& pFinish) {
  constexpr int kRun = 256;
  double powers[kRun];
  for (int start = 0; start < pCount; start += kRun) {
    const int count = std::min(kRun, pCount - start);
    for (int i = 0; i < count; ++i) powers[i] = pBase(pX[start + i]);
    Kernels().fPowRow(powers, pExponent, powers, count);
    for (int i = 0; i < count; ++i) pTo[start + i] = pFinish(pX[start + i], powers[i]);
  }
}

}  // namespace

cTransfer::~cTransfer() = default;

void cTransfer::EvaluateRow(const float* pX, float* pTo, int pCount) const {
  if (const auto* const rows = dynamic_cast<const cRowTransfer*>(this)) return rows->FillRow(pX, pTo, pCount);
  for (int i = 0; i < pCount; ++i) pTo[i] = Evaluate(pX[i]);
}

float cRowTransfer::Evaluate(float pX) const {
  FillRow(&pX, &pX, 1);
  return pX;
}

void CheckTransfer(const cTransfer* pTransfer, const char* pSignature) {
  const char* const kSignature = pSignature;
  TM_CHECK(pTransfer != nullptr, cArgumentNullException, "Argument pTransfer cannot be null.");
}

cTransferGamma::cTransferGamma(float pGamma) : fGamma(pGamma) {}

cTransferGamma::~cTransferGamma() = default;

cTransfer* cTransferGamma::Clone() const {
  return new cTransferGamma(fGamma);
}

void cTransferGamma::FillRow(const float* pX, float* pTo, int pCount) const {
  PowerRow(
      pX, pTo, pCount, 1.0 / static_cast<double>(fGamma), [](float pValue) { return double{pValue}; },
      [](float, double pPower) { return static_cast<float>(pPower); });
}

cTransfer_sRGBToLinear::cTransfer_sRGBToLinear() = default;

cTransfer_sRGBToLinear::~cTransfer_sRGBToLinear() = default;

cTransfer* cTransfer_sRGBToLinear::Clone() const {
  return new cTransfer_sRGBToLinear;
}

// Both sRGB curves continue their straight part below 0 and send NaN through the power.
void cTransfer_sRGBToLinear::FillRow(const float* pX, float* pTo, int pCount) const {
  PowerRow(
      pX, pTo, pCount, 2.4, [](float pValue) { return (double{pValue} + 0.055) / 1.055; },
      [](float pValue, double pPower) {
        return pValue <= kDecodingKnee ? pValue / 12.92f : static_cast<float>(pPower);
      });
}

cTransferLinearTo_sRGB::cTransferLinearTo_sRGB() = default;

cTransferLinearTo_sRGB::~cTransferLinearTo_sRGB() = default;

cTransfer* cTransferLinearTo_sRGB::Clone() const {
  return new cTransferLinearTo_sRGB;
}

void cTransferLinearTo_sRGB::FillRow(const float* pX, float* pTo, int pCount) const {
  constexpr double kExponent = 0.4166666666666667;  // 1 / 2.4
  PowerRow(
      pX, pTo, pCount, kExponent, [](float pValue) { return double{pValue}; },
      [](float pValue, double pPower) {
        return pValue <= kEncodingKnee ? pValue * 12.92f : static_cast<float>(pPower * 1.055 - 0.055);
      });
}

cTransfer_Table::cTransfer_Table(unsigned short* pTable, int pTableSize)
    : fTable(nullptr), fCount(pTableSize) {
  static constexpr char kSignature[] =
      "__cdecl TmEngine::cTransfer_Table::cTransfer_Table(unsigned short *,int)";
  TM_CHECK(pTable != nullptr, cArgumentNullException, "Argument pTable cannot be null.");
  TM_CHECK(pTableSize >= 2, cArgumentException, "Argument pTableSize must be greater than 1.");
  const std::size_t count = static_cast<std::size_t>(pTableSize);
  fTable = new float[count + 1];
  for (std::size_t i = 0; i < count; ++i) fTable[i] = static_cast<float>(pTable[i]) / 65535.0f;
  fTable[count] = fTable[count - 1];
}

cTransfer_Table::cTransfer_Table(const cTransfer_Table* pFrom)
    : fTable(new float[static_cast<std::size_t>(pFrom->fCount) + 1]), fCount(pFrom->fCount) {
  std::copy_n(pFrom->fTable, static_cast<std::size_t>(fCount) + 1, fTable);
}

cTransfer_Table::~cTransfer_Table() {
  delete[] fTable;
}

cTransfer* cTransfer_Table::Clone() const {
  return new cTransfer_Table(this);
}

float cTransfer_Table::Evaluate(float pX) const {
  if (!(pX > 0.0f)) return fTable[0];  // NaN, too
  const float last = static_cast<float>(fCount - 1);
  const float position = last * pX;
  if (position >= last) return fTable[fCount - 1];
  // Below last, which is at most 2^31, the next smaller float fits an int.
  const std::ptrdiff_t index = static_cast<int>(position);
  const float fraction = position - static_cast<float>(index);
  return (1.0f - fraction) * fTable[index] + fraction * fTable[index + 1];
}

}  // namespace TmEngine
