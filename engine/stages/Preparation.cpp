#include "engine/stages/Preparation.h"

#include <cstddef>

#include "engine/BitmapRows.h"
#include "engine/Elementary.h"
#include "engine/cBitmapU16T.h"
#include "engine/kernels/Kernels.h"
#include "engine/stages/ColorRecord.h"
#include "engine/stages/Plane.h"
#include "engine/stages/StageFlags.h"

namespace TmEngine {
namespace {

constexpr float kDarkLuminance = 1e-6f;

void FillRecord(const float* pXYZ, const cMatrix33& pM, unsigned short* pRecord) {
  float luminance = kDarkLuminance;
  float r = 1.0f, g = 1.0f, b = 1.0f;
  if (pXYZ[1] > 0.0f) {
    luminance = pXYZ[1];
    const float x = pXYZ[0] / luminance;
    const float z = pXYZ[2] / luminance;
    r = pM[0] * x + pM[1] + pM[2] * z;
    g = pM[3] * x + pM[4] + pM[5] * z;
    b = pM[6] * x + pM[7] + pM[8] * z;
  }
  ColorRecord::StoreFloat(pRecord + ColorRecord::kLuminance, luminance);
  HueRecord::Store(pRecord + ColorRecord::kHueRecord, r, g, b);
}

}  // namespace

void FillColorRecords(const bool* pCancel, bool* pAborted, const cBitmapXYZ32& pInput,
                      const cMatrix33& pXYZToWorking, cBitmapU16T& pRecords) {
  const cMatrix33 matrix = pXYZToWorking;
  for (int y = 0; y < pInput.GetHeight(); ++y) {
    if (StopRequested(pCancel, pAborted)) return;
    const float* from = RowsOf(pInput).Row(y);
    unsigned short* record = pRecords.GetRow(y);
    for (int x = 0; x < pInput.GetWidth(); ++x, from += 3, record += ColorRecord::kSlots) {
      FillRecord(from, matrix, record);
    }
  }
}

void MeasureLogLuminance(const bool* pCancel, bool* pAborted, const cBitmapXYZ32& pInput,
                         float* pLogLuminance, sLuminanceRange& pRange) {
  constexpr float kFloor = 0x1p-128f;  // a denormal float: it must not be flushed
  const sKernels& kernels = Kernels();
  pRange.fMin = 1e30f;
  pRange.fMax = -1e30f;
  for (int y = 0; y < pInput.GetHeight(); ++y) {
    if (StopRequested(pCancel, pAborted)) return;
    const float* from = RowsOf(pInput).Row(y);
    float* to = pLogLuminance + RowStart(y, pInput.GetWidth());
    for (int x = 0; x < pInput.GetWidth(); ++x) {
      const float luminance = from[3 * x + 1];
      const float clamped = kFloor > luminance ? kFloor : luminance;
      if (clamped < pRange.fMin) pRange.fMin = clamped;
      if (clamped > pRange.fMax) pRange.fMax = clamped;
      to[x] = clamped;
    }
    kernels.fLog10Row(to, to, pInput.GetWidth());
  }
  pRange.fLogMax = Log10(pRange.fMax);
  pRange.fLogMin = Log10(pRange.fMin);
}

}  // namespace TmEngine
