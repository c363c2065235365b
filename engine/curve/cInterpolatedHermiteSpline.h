#pragma once

#include "engine/curve/cHermiteSpline.h"

namespace TmEngine {

/// A curve whose points are blended from a sequence of key frames, each a full set of control points. A
/// change of the number of points through the base's operations makes every key frame a copy of the new
/// points.
class cInterpolatedHermiteSpline : public cHermiteSpline {
 public:
  cInterpolatedHermiteSpline();                                      ///< Two key frames, both the diagonal.
  explicit cInterpolatedHermiteSpline(const cHermiteSpline& pFrom);  ///< Two key frames, both pFrom's points.
  /// Two key frames, both pFrom's present points: key frames are not copied.
  explicit cInterpolatedHermiteSpline(const cInterpolatedHermiteSpline& pFrom);
  ~cInterpolatedHermiteSpline() override;

  void UpdatePointArray() override;

  /// Copies pKeyFrameCount (at least 1) * pControlPointCount (at least 2) records, frame after frame; they
  /// may be the spline's own. Afterwards the points are frame 0, updated by the mode.
  void SetKeyFrames(eSplineInterpolationMode pMode, int pControlPointCount, int pKeyFrameCount,
                    const sControlPoint* pCPs);
  /// Key frames of six floats per point: the point, its previous tangent, its next tangent.
  void SetKeyFrames(eSplineInterpolationMode pMode, int pControlPointCount, int pKeyFrameCount,
                    const float* pCPs);
  /// Blends the points at pT: 0 is the first frame, 1 and above the last; NaN and values below 0 take frame
  /// 0. With a single frame the curve stays as it is.
  void InterpolateKeyFrames(float pT);

  int GetKeyFrameCount() const { return fKeyFrameCount; }
  const sControlPoint* GetKeyFrames() const { return fKeyFrames.get(); }

 private:
  void LayOutKeyFrames(int pKeyFrameCount);
  void AdoptKeyFrames(eSplineInterpolationMode pMode, int pControlPointCount, int pKeyFrameCount,
                      std::unique_ptr<sControlPoint[]> pKeyFrames);

  int fKeyFrameCount = 0;
  std::unique_ptr<sControlPoint[]> fKeyFrames;  // point j of frame f is record f * fCount + j
  int fAllocatedPointCount = -1;                // the fCount that fKeyFrames was laid out for
};

}  // namespace TmEngine
