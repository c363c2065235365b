#include "engine/stages/EqualiserPreparation.h"

#include <algorithm>
#include <memory>

#include "engine/ImageRows.h"
#include "engine/cMatrix33.h"
#include "engine/cTransferLUT.h"
#include "engine/kernels/Kernels.h"
#include "engine/stages/ColorRows.h"
#include "engine/stages/StageFlags.h"

namespace TmEngine {
namespace {

template <class tSample>
void FillRun(const tSample* pFrom, int pCount, const float* pToLinear, const cMatrix33& pMatrix,
             const sColorRun& pTo) {
  float r[kRunLength], g[kRunLength], b[kRunLength];
  for (int i = 0; i < pCount; ++i, pFrom += 3) {
    r[i] = pToLinear[pFrom[2]];
    g[i] = pToLinear[pFrom[1]];
    b[i] = pToLinear[pFrom[0]];
  }
  Kernels().fHueRecords(pMatrix.Elements(), {r, g, b}, pTo, pCount);
}

template <class tSample, class tTransferLUT>
void FillRows(const bool* pCancel, bool* pAborted, const cBitmapLDR& pInput, const cMatrix33& pMatrix,
              cBitmapU16T& pRecords) {
  const auto toLinear = std::make_unique<tTransferLUT>(pInput.GetColorSpace()->GetToLinear());
  for (int y = 0; y < pInput.GetHeight(); ++y) {
    if (StopRequested(pCancel, pAborted)) return;
    const auto* const row = reinterpret_cast<const tSample*>(PixelRow(pInput, y));
    for (int start = 0; start < pInput.GetWidth(); start += kRunLength) {
      FillRun(row + std::ptrdiff_t{3} * start, std::min(kRunLength, pInput.GetWidth() - start),
              toLinear->GetTable(), pMatrix, HueRun(pRecords, y, start));
    }
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
