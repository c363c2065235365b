#include "engine/stages/EqualiserPreparation.h"

#include <cstddef>
#include <memory>

#include "engine/color/cTransferLUT.h"
#include "engine/image/ImageRows.h"
#include "engine/kernels/Kernels.h"
#include "engine/math/cMatrix33.h"
#include "engine/stages/ColorRows.h"
#include "engine/stages/StageRun.h"

namespace TmEngine {
namespace {

template <class tSample>
void Linearise(const tSample* pFrom, int pCount, const float* pToLinear, float* pToR, float* pToG,
               float* pToB) {
  for (int i = 0; i < pCount; ++i, pFrom += 3) {
    pToR[i] = pToLinear[pFrom[2]];
    pToG[i] = pToLinear[pFrom[1]];
    pToB[i] = pToLinear[pFrom[0]];
  }
}

template <class tSample, class tTransferLUT>
bool FillRows(const sStageRun& pRun, const cBitmapLDR& pInput, const cMatrix33& pMatrix,
              cBitmapU16T& pRecords) {
  const auto toLinear = BuildTable<tTransferLUT>(pInput.GetColorSpace()->GetToLinear(), pRun.fCancel);
  if (toLinear == nullptr) return false;
  const int width = pInput.GetWidth();
  float r[kRunLength], g[kRunLength], b[kRunLength];
  const auto fill = [&](int pY, int pX, int pCount) {
    ForEachPart(width, pY, pX, pCount, [&](int pRow, int pColumn, int pOffset, int pPart) {
      const auto* const row = reinterpret_cast<const tSample*>(PixelRow(pInput, pRow));
      Linearise(row + std::ptrdiff_t{3} * pColumn, pPart, toLinear->GetTable(), r + pOffset, g + pOffset,
                b + pOffset);
    });
    Kernels().fHueRecords(pMatrix.Elements(), {r, g, b}, ColorRun(pRecords, pY, pX), pCount);
  };
  return ForEachRun(width, pInput.GetHeight(), pRecords.GetTileHeight(), pRun.fCancel, fill);
}

}  // namespace

bool FillHueRecords(const sStageRun& pRun, const cBitmapLDR& pInput, const cMatrix33& pXYZToWorking,
                    cBitmapU16T& pRecords) {
  const cMatrix33 matrix = pXYZToWorking * pInput.GetColorSpace()->GetRGBToXYZ();
  return pInput.GetBitDepth() == 8
             ? FillRows<unsigned char, cTransferLUT_I8F32>(pRun, pInput, matrix, pRecords)
             : FillRows<unsigned short, cTransferLUT_I16F32>(pRun, pInput, matrix, pRecords);
}

}  // namespace TmEngine
