#pragma once

#include "engine/cTransfer.h"
#include "engine/cVector.h"

namespace TmEngine {

/// A point of a curve, with the tangents of the segments that leave and reach it.
struct sControlPoint {
  cVector2 fPoint;            ///< x = input, y = output.
  cVector2 fNextTangent;      ///< Of the segment that starts here.
  cVector2 fPreviousTangent;  ///< Of the segment that ends here.
  unsigned int fID = 0;       ///< Position in the array as given, before sorting.
};
static_assert(sizeof(sControlPoint) == 28);

/// How tangents are set each time the points change. The type is fixed: ids out of range may be passed.
enum eSplineInterpolationMode : int {
  eSplineInterpolationMode_FiniteDifference = 0,
  eSplineInterpolationMode_Supplied = 1,  ///< The caller's, left untouched.
  eSplineInterpolationMode_Linear = 2,    ///< Straight lines between the points.
  eSplineInterpolationMode_Flat = 3,      ///< Every tangent (0.2, 0).
};

/// A curve on [0, 1] through control points, joined by cubic Hermite segments. Rendered once after a change
/// into a table of 65,536 samples, which Evaluate reads; other tables derive from it on demand.
class cHermiteSpline : public cTransfer {
 public:
  cHermiteSpline();                                      ///< The diagonal: (0, 0) and (1, 1), mode 0.
  explicit cHermiteSpline(const cHermiteSpline& pFrom);  ///< Mode and points of pFrom; tables are built anew.
  cHermiteSpline& operator=(const cHermiteSpline&) = delete;
  ~cHermiteSpline() override;

  cTransfer* Clone() const override;  ///< Always throws cInvalidOperationException; use the constructor.
  /// The sample at truncate(pX * 65535), of which only the low 16 bits are kept: pass values in [0, 1].
  float Evaluate(float pX) const override;
  virtual bool operator==(const cHermiteSpline& pOther) const;  ///< Mode and points; NaN matches nothing.
  bool operator!=(const cHermiteSpline& pOther) const { return !(*this == pOther); }
  /// Numbers, sorts and spreads the points, sets tangents by the mode, invalidates the tables.
  virtual void UpdatePointArray();
  virtual const float* GetFloatTable() const;           ///< 65,537 samples of the curve (the last a guard).
  virtual const unsigned short* Get16BitTable() const;  ///< 65,536 samples, truncate(v * 65535).
  virtual const float* Get8BitInputFloatTable() const;  ///< 256 samples for 8-bit inputs.
  virtual const unsigned char* Get8BitTable() const;    ///< 256 samples, truncate(v * 255).
  virtual void Invalidate();
  virtual void BuildFloatTable() const;
  virtual void Build16BitTable() const;
  virtual void Build8BitInputFloatTable() const;
  virtual void Build8BitTable() const;

  eSplineInterpolationMode GetMode() const { return fMode; }
  int GetCount() const { return fCount; }
  const sControlPoint* GetControlPoints() const { return fControlPoints; }

  /// Copies pControlPointCount (at least 2) records; pCPs may be the spline's own array.
  void SetControlPoints(eSplineInterpolationMode pMode, int pControlPointCount, const sControlPoint* pCPs);
  // Indices count the points after sorting. All throw cArgumentException for one out of range. After a change
  // through a reference or a tangent setter, call UpdatePointArray or Invalidate.
  cVector2& GetPointAt(int pIndex);
  cVector2& GetNextTangentAt(int pIndex);
  cVector2& GetPreviousTangentAt(int pIndex);
  void SetNextTangentAt(int pIndex, const cVector2& pTangent);
  void SetPreviousTangentAt(int pIndex, const cVector2& pTangent);
  int MovePoint(int pIndex, const cVector2& pPoint);  ///< The point's new index.
  void RemovePointAt(int pIndex);                     ///< Two points at least must stay.

 protected:
  eSplineInterpolationMode fMode = eSplineInterpolationMode_FiniteDifference;
  sControlPoint* fControlPoints = nullptr;
  int fCount = 0;
  float* fFloatTable = nullptr;
  unsigned short* f16BitTable = nullptr;
  float* f8BitInputFloatTable = nullptr;
  unsigned char* f8BitTable = nullptr;
  mutable bool fFloatTableValid = false;
  mutable bool f16BitTableValid = false;
  mutable bool f8BitInputFloatTableValid = false;
  mutable bool f8BitTableValid = false;
};

}  // namespace TmEngine
