#pragma once

#include <memory>

#include "engine/color/cTransfer.h"
#include "engine/math/Quantise.h"
#include "engine/math/cVector.h"

namespace TmEngine {

/// A point of a curve, with the tangents of the segments that leave and reach it.
struct sControlPoint {
  cVector2 fPoint;            ///< x = input, y = output.
  cVector2 fNextTangent;      ///< Tangent at the start of the next segment.
  cVector2 fPreviousTangent;  ///< Tangent at the end of the segment before.
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
///
/// Points may lie outside [0, 1]: the table shows the part within, samples clamped to [0, 1]. A NaN
/// coordinate counts as 0 there. Tables are built in const calls, without locks: one thread at a
/// time. A call that throws, for want of memory too, leaves points, tangents and mode as they were.
class cHermiteSpline : public cTransfer {
 public:
  cHermiteSpline();  ///< The diagonal: (0, 0) and (1, 1), mode 0.
  /// Mode and points of pFrom, numbered in their present order.
  explicit cHermiteSpline(const cHermiteSpline& pFrom);
  cHermiteSpline& operator=(const cHermiteSpline&) = delete;
  ~cHermiteSpline() override;

  cTransfer* Clone() const override;  ///< Always throws cInvalidOperationException; use the constructor.
  /// The sample at truncate(pX * 65535), of which only the low 16 bits are kept: pass values in [0, 1].
  float Evaluate(float pX) const override;
  /// Mode, count and every field of every point, the ids as well; NaN matches nothing.
  virtual bool operator==(const cHermiteSpline& pOther) const;
  bool operator!=(const cHermiteSpline& pOther) const { return !(*this == pOther); }
  /// Numbers, sorts and spreads the points, sets tangents by the mode, invalidates the tables.
  virtual void UpdatePointArray();
  // The accessors build a stale table first. Pointers hold as long as the spline.
  virtual const float* GetFloatTable() const;           ///< 65,537 samples of the curve (the last a guard).
  virtual const unsigned short* Get16BitTable() const;  ///< 65,536 samples, truncate(v * 65535).
  virtual const float* Get8BitInputFloatTable() const;  ///< 256 samples: float sample 257 * i.
  virtual const unsigned char* Get8BitTable() const;    ///< 256: truncate(v * 255) of float sample 254 * i.
  /// The float table's flag is cleared; tables derived from it follow, as they are stale when it is.
  virtual void Invalidate();
  virtual void BuildFloatTable() const;
  virtual void Build16BitTable() const;
  virtual void Build8BitInputFloatTable() const;
  virtual void Build8BitTable() const;

  eSplineInterpolationMode GetMode() const { return fMode; }
  int GetCount() const { return fCount; }
  const sControlPoint* GetControlPoints() const { return fControlPoints.get(); }

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
  /// Takes over a new set of points and updates it; should that throw, mode and points are the former ones.
  void ReplacePoints(eSplineInterpolationMode pMode, int pCount, std::unique_ptr<sControlPoint[]> pPoints);

  eSplineInterpolationMode fMode = eSplineInterpolationMode_FiniteDifference;
  std::unique_ptr<sControlPoint[]> fControlPoints;
  int fCount = 0;
  // Each table has room for one entry more than it has inputs; only the float table fills it. The large ones
  // are not cleared, so that they take no pages until they are built, which writes every entry.
  std::unique_ptr<float[]> fFloatTable{new float[kTableSize + 1]};
  std::unique_ptr<unsigned short[]> f16BitTable{new unsigned short[kTableSize + 1]};
  std::unique_ptr<float[]> f8BitInputFloatTable = std::make_unique<float[]>(257);
  std::unique_ptr<unsigned char[]> f8BitTable = std::make_unique<unsigned char[]>(257);
  mutable bool fFloatTableValid = false;
  mutable bool f16BitTableValid = false;
  mutable bool f8BitInputFloatTableValid = false;
  mutable bool f8BitTableValid = false;
};

/// Texts of the checks of key frames.
struct sKeyFrameTexts {
  const char* fPointCount;
  const char* fKeyFrameCount;
};

/// The checks of cInterpolatedHermiteSpline's key frames, in the name of pSignature: cArgumentException for
/// the counts, cArgumentNullException. Their exceptions name the base's source, so they are written there.
void CheckKeyFrames(int pControlPointCount, int pKeyFrameCount, const void* pCPs,
                    const sKeyFrameTexts& pTexts, const char* pSignature);

}  // namespace TmEngine
