#include "engine/stages/EqualiserPreparation.h"

#include <memory>

#include "engine/cBitmapLDR.h"
#include "engine/cBitmapU16T.h"
#include "engine/cMatrix33.h"
#include "engine/cTransferLUT.h"
#include "engine/stages/HueRecord.h"
#include "engine/stages/LdrRows.h"
#include "engine/stages/StageFlags.h"

namespace TmEngine {
namespace {

float AtLeastZero(float pValue) {
  return pValue > 0.0f ? pValue : 0.0f;
}

template <class tSample>
void FillRow(const tSample* pFrom, int pWidth, const float* pToLinear, const cMatrix33& pM,
             unsigned short* pRecord) {
  for (int x = 0; x < pWidth; ++x, pFrom += 3, pRecord += HueRecord::kSlots) {
    const float r = pToLinear[pFrom[2]];
    const float g = pToLinear[pFrom[1]];
    const float b = pToLinear[pFrom[0]];
    HueRecord::Store(pRecord, AtLeastZero(pM[0] * r + pM[1] * g + pM[2] * b),
                     AtLeastZero(pM[3] * r + pM[4] * g + pM[5] * b),
                     AtLeastZero(pM[6] * r + pM[7] * g + pM[8] * b));
  }
}

template <class tSample, class tTransferLUT>
void FillRows(const bool* pCancel, bool* pAborted, const cBitmapLDR& pInput, const cMatrix33& pMatrix,
              cBitmapU16T& pRecords) {
  const auto toLinear = std::make_unique<tTransferLUT>(pInput.GetColorSpace()->GetToLinear());
  const cMatrix33 matrix = pMatrix;
  for (int y = 0; y < pInput.GetHeight(); ++y) {
    if (StopRequested(pCancel, pAborted)) return;
    FillRow(reinterpret_cast<const tSample*>(PixelRow(pInput, y)), pInput.GetWidth(), toLinear->GetTable(),
            matrix, pRecords.GetRow(y));
  }
}

}  // namespace

void FillHueRecords(const bool* pCancel, bool* pAborted, const cBitmapLDR& pInput,
                    const cMatrix33& pXYZToWorking, cBitmapU16T& pRecords) {
  const cMatrix33 matrix = pXYZToWorking * pInput.GetColorSpace()->GetRGBToXYZ();
  if (pInput.GetBitDepth() == 8) {
    FillRows<unsigned char, cTransferLUT_I8F32>(pCancel, pAborted, pInput, matrix, pRecords);
  } else {
    FillRows<unsigned short, cTransferLUT_I16F32>(pCancel, pAborted, pInput, matrix, pRecords);
  }
}

}  // namespace TmEngine
