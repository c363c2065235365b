#include "engine/cTransfer.h"

#include <algorithm>
#include <cstddef>

#include "engine/Elementary.h"
#include "engine/TmCheck.h"

namespace TmEngine {

static constexpr char kSourceFile[] = ".\\cTransfer.cpp";

cTransfer::~cTransfer() = default;

cTransferGamma::cTransferGamma(float pGamma) : fGamma(pGamma) {}

cTransferGamma::~cTransferGamma() = default;

cTransfer* cTransferGamma::Clone() const {
  return new cTransferGamma(fGamma);
}

float cTransferGamma::Evaluate(float pX) const {
  return static_cast<float>(Pow(static_cast<double>(pX), 1.0 / static_cast<double>(fGamma)));
}

cTransfer_sRGBToLinear::cTransfer_sRGBToLinear() = default;

cTransfer_sRGBToLinear::~cTransfer_sRGBToLinear() = default;

cTransfer* cTransfer_sRGBToLinear::Clone() const {
  return new cTransfer_sRGBToLinear;
}

// Both sRGB curves continue their straight part below 0 and send NaN through the power.
float cTransfer_sRGBToLinear::Evaluate(float pX) const {
  if (pX <= 0.04045f) return pX / 12.92f;
  return static_cast<float>(Pow((static_cast<double>(pX) + 0.055) / 1.055, 2.4));
}

cTransferLinearTo_sRGB::cTransferLinearTo_sRGB() = default;

cTransferLinearTo_sRGB::~cTransferLinearTo_sRGB() = default;

cTransfer* cTransferLinearTo_sRGB::Clone() const {
  return new cTransferLinearTo_sRGB;
}

float cTransferLinearTo_sRGB::Evaluate(float pX) const {
  if (pX <= 0.0031308f) return pX * 12.92f;
  constexpr double kExponent = 0.4166666666666667;  // 1 / 2.4
  return static_cast<float>(Pow(static_cast<double>(pX), kExponent) * 1.055 - 0.055);
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
