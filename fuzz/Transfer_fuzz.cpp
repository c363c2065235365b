// Transfers and their tables: any table, gamma and place of evaluation.

#include <algorithm>
#include <memory>

#include "engine/base/cException.h"
#include "engine/color/cColorSpace.h"
#include "engine/color/cTransferLUT.h"
#include "fuzz/FuzzInput.h"

using namespace TmEngine;

namespace {

using tTransfer = std::unique_ptr<cTransfer>;

std::vector<unsigned short> TakeTable(FuzzedDataProvider& pData) {
  std::vector<unsigned short> table(pData.ConsumeIntegralInRange<std::size_t>(1, 40));
  for (unsigned short& entry : table) entry = pData.ConsumeIntegral<unsigned short>();
  return table;
}

cVector2 TakeChromaticity(FuzzedDataProvider& pData) {
  const float x = TakeFloat(pData, 0.0f, 1.0f);
  return {x, TakeFloat(pData, 0.0f, 1.0f)};
}

void CheckTableTransfer(std::vector<unsigned short>& pTable, const cTransfer& pTransfer,
                        FuzzedDataProvider& pData) {
  const auto [least, most] = std::minmax_element(pTable.begin(), pTable.end());
  for (int i = 0; i < 16; ++i) {
    const float value = pTransfer.Evaluate(TakeFloat(pData, -0.1f, 1.1f)) * 65535.0f;
    const bool isWithin =
        value >= static_cast<float>(*least) - 0.1f && value <= static_cast<float>(*most) + 0.1f;
    Require(isWithin, "values lie among the table's entries");
  }
}

tTransfer TakeTransfer(FuzzedDataProvider& pData) {
  switch (pData.ConsumeIntegralInRange(0, 3)) {
    case 0:
      return std::make_unique<cTransferGamma>(TakeFloat(pData, 0.1f, 10.0f));
    case 1:
      return std::make_unique<cTransfer_sRGBToLinear>();
    case 2:
      return std::make_unique<cTransferLinearTo_sRGB>();
    default: {
      std::vector<unsigned short> table = TakeTable(pData);
      auto transfer = std::make_unique<cTransfer_Table>(table.data(), static_cast<int>(table.size()));
      CheckTableTransfer(table, *transfer, pData);
      return transfer;
    }
  }
}

/// Builds one of the tables, and compares it with the transfer.
void CheckLUT(cTransfer& pTransfer, FuzzedDataProvider& pData) {
  const int index = pData.ConsumeIntegralInRange(0, 255);
  const float decoded = pTransfer.Evaluate(static_cast<float>(index) / 255.0f);
  const auto isSame = [](float pA, float pB) { return pA == pB || (pA != pA && pB != pB); };
  switch (pData.ConsumeIntegralInRange(0, 3)) {
    case 0:
      return Require(isSame(std::make_unique<cTransferLUT_I8F32>(&pTransfer)->GetTable()[index], decoded),
                     "8-bit decoding table");
    case 1:
      return Require(
          isSame(std::make_unique<cTransferLUT_I16F32>(&pTransfer)->GetTable()[257 * index], decoded),
          "16-bit decoding table");
    case 2:
      std::make_unique<cTransferLUT_F32I8>(&pTransfer)->BuildCache(&pTransfer);
      return;
    default:
      std::make_unique<cTransferLUT_F32I16>(&pTransfer)->BuildCache(&pTransfer);
  }
}

std::unique_ptr<cColorSpace> TakeColorSpace(FuzzedDataProvider& pData) {
  if (pData.ConsumeBool()) {
    const cVector2 red = TakeChromaticity(pData);
    const cVector2 green = TakeChromaticity(pData);
    const cVector2 blue = TakeChromaticity(pData);
    return std::make_unique<cColorSpace_GenericRGB>(red, green, blue, TakeChromaticity(pData),
                                                    TakeFloat(pData, 0.1f, 10.0f));
  }
  float m[12];
  for (float& number : m) number = TakeFloat(pData, -0.5f, 2.0f);
  std::vector<unsigned short> to = TakeTable(pData);
  std::vector<unsigned short> from = TakeTable(pData);
  return std::make_unique<cColorSpace_GenericRGB>(
      cMatrix33(m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8]), cVector3(m[9], m[10], m[11]),
      to.data(), static_cast<int>(to.size()), from.data(), static_cast<int>(from.size()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t pSize) {
  FuzzedDataProvider data(pBytes, pSize);
  try {
    if (data.ConsumeIntegralInRange(0, 3) == 0) {
      const std::unique_ptr<cColorSpace> space(TakeColorSpace(data)->Clone());
      CheckLUT(*space->GetToLinear(), data);
      CheckLUT(*space->GetFromLinear(), data);
      return 0;
    }
    const tTransfer transfer(TakeTransfer(data)->Clone());
    for (int i = 0; i < 16; ++i) transfer->Evaluate(TakeFloat(data, -0.1f, 1.1f));
    CheckLUT(*transfer, data);
  } catch (const cArgumentException&) {  // a table of one entry
  }
  return 0;
}
