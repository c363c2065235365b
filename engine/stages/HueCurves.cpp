#include "engine/stages/HueCurves.h"

#include "engine/base/StageFlags.h"
#include "engine/base/TmCheck.h"
#include "engine/curve/cHermiteSpline.h"
#include "engine/stages/HueTable.h"

namespace TmEngine {
namespace {

std::unique_ptr<cHermiteSpline> NeutralHueCurve() {
  sControlPoint points[2];
  points[0].fPoint = cVector2(0.0f, 0.5f);
  points[1].fPoint = cVector2(1.0f, 0.5f);
  auto curve = std::make_unique<cHermiteSpline>();
  curve->SetControlPoints(eSplineInterpolationMode_Flat, 2, points);
  return curve;
}

/// Whether it was replaced.
bool ReplaceIfOther(std::unique_ptr<cHermiteSpline>& pHeld, const cHermiteSpline& pFrom) {
  if (*pHeld == pFrom) return false;
  pHeld = std::make_unique<cHermiteSpline>(pFrom);
  return true;
}

}  // namespace

cHueCurves::cHueCurves()
    : fHHCurve(NeutralHueCurve()), fHSCurve(NeutralHueCurve()), fHLCurve(NeutralHueCurve()) {}

cHueCurves::~cHueCurves() = default;

void cHueCurves::Replace(const cHermiteSpline* pHHCurve, const cHermiteSpline* pHSCurve,
                         const cHermiteSpline* pHLCurve, bool& pDirty, const sThrowPlace& pPlace) {
  TM_CHECK_AT(pPlace, pHHCurve != nullptr, cArgumentNullException, "Argument pHHCurve is null.");
  TM_CHECK_AT(pPlace, pHSCurve != nullptr, cArgumentNullException, "Argument pHSCurve is null.");
  TM_CHECK_AT(pPlace, pHLCurve != nullptr, cArgumentNullException, "Argument pHLCurve is null.");
  if (ReplaceIfOther(fHHCurve, *pHHCurve)) fIsTableStale = pDirty = true;
  if (ReplaceIfOther(fHSCurve, *pHSCurve)) fIsTableStale = pDirty = true;
  if (ReplaceIfOther(fHLCurve, *pHLCurve)) pDirty = true;
}

bool cHueCurves::BuildHueTable(std::unique_ptr<cHueTable>& pTable, const bool* pCancel) {
  if (!fIsTableStale) return true;
  if (pTable == nullptr) pTable = std::make_unique<cHueTable>();
  if (IsSet(pCancel)) return false;
  const unsigned short* const shift = fHHCurve->Get16BitTable();
  if (IsSet(pCancel)) return false;
  const float* const saturation = fHSCurve->GetFloatTable();
  fIsTableStale = !pTable->Build(shift, saturation, pCancel);
  return !fIsTableStale;
}

const float* cHueCurves::Lightness() const {
  return fHLCurve->GetFloatTable();
}

}  // namespace TmEngine
