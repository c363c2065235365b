// Curves under edits of any kind and order: their tables hold numbers in [0, 1], and depend on the points
// alone, not on how they came about.

#include <algorithm>

#include "engine/base/cException.h"
#include "engine/curve/cContrastCurve.h"
#include "fuzz/FuzzCurve.h"

using namespace TmEngine;

namespace {

void CheckTables(const cHermiteSpline& pCurve, FuzzedDataProvider& pData) {
  const float* const table = pCurve.GetFloatTable();
  const auto isUnit = [](float pV) { return pV >= 0.0f && pV <= 1.0f; };
  Require(std::all_of(table, table + kTableSize + 1, isUnit), "samples lie in [0, 1]");
  Require(isUnit(pCurve.Evaluate(TakeFloat(pData, 0.0f, 1.0f))), "values lie in [0, 1]");
  for (const int i : {0, 1, 100, 255}) {
    const float sample = table[254 * i];
    Require(pCurve.Get8BitTable()[i] == static_cast<unsigned char>(sample * 255.0f), "8-bit table follows");
    Require(pCurve.Get8BitInputFloatTable()[i] == table[257 * i], "8-bit input table follows");
    Require(pCurve.Get16BitTable()[254 * i] == static_cast<int>(sample * 65535.0f), "16-bit table follows");
  }
}

void CheckCopy(cHermiteSpline& pCurve) {
  pCurve.UpdatePointArray();
  const cHermiteSpline copy(pCurve);
  Require(std::equal(copy.GetFloatTable(), copy.GetFloatTable() + kTableSize, pCurve.GetFloatTable()),
          "a copy has the same samples");
}

void ChangeKeyFrames(cInterpolatedHermiteSpline& pCurve, FuzzedDataProvider& pData) {
  const int points = pData.ConsumeIntegralInRange(1, 5);
  const int frames = pData.ConsumeIntegralInRange(0, 4);
  if (pData.ConsumeBool()) {
    pCurve.SetKeyFrames(TakeMode(pData), points, frames, TakePoints(pData, points * frames).data());
    return;
  }
  std::vector<float> numbers(static_cast<std::size_t>(6 * points * frames));
  for (float& number : numbers) number = TakeFloat(pData, -0.1f, 1.1f);
  pCurve.SetKeyFrames(TakeMode(pData), points, frames, numbers.data());
}

void Edit(cInterpolatedHermiteSpline& pCurve, FuzzedDataProvider& pData) {
  const int index = pData.ConsumeIntegralInRange(-1, pCurve.GetCount());
  switch (pData.ConsumeIntegralInRange(0, 9)) {
    case 0: {
      const int count = pData.ConsumeIntegralInRange(1, 12);
      return pCurve.SetControlPoints(TakeMode(pData), count, TakePoints(pData, count).data());
    }
    case 1: {
      const int moved = pCurve.MovePoint(index, TakePoint(pData));
      return Require(moved >= 0 && moved < pCurve.GetCount(), "a moved point has an index");
    }
    case 2:
      return pCurve.RemovePointAt(index);
    case 3:
      return pCurve.SetNextTangentAt(index, TakePoint(pData));
    case 4:
      return pCurve.SetPreviousTangentAt(index, TakePoint(pData));
    case 5:
      pCurve.GetPointAt(index) = TakePoint(pData);
      return pCurve.Invalidate();
    case 6:
      return ChangeKeyFrames(pCurve, pData);
    case 7:
      return pCurve.InterpolateKeyFrames(TakeFloat(pData, -0.1f, 1.1f));
    case 8:  // its own points
      return pCurve.SetControlPoints(TakeMode(pData), pData.ConsumeIntegralInRange(2, pCurve.GetCount()),
                                     pCurve.GetControlPoints());
    default:
      return CheckTables(pCurve, pData);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t pSize) {
  FuzzedDataProvider data(pBytes, pSize);
  std::unique_ptr<cInterpolatedHermiteSpline> curve;
  if (data.ConsumeBool()) {
    curve = std::make_unique<cContrastCurve>();
  } else {
    curve = std::make_unique<cInterpolatedHermiteSpline>();
  }
  for (int i = 0; i < 24 && data.remaining_bytes() > 0; ++i) {
    try {
      Edit(*curve, data);
    } catch (const cArgumentException&) {
    } catch (const cInvalidOperationException&) {
    }
  }
  CheckTables(*curve, data);
  CheckCopy(*curve);
  return 0;
}
