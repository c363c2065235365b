#pragma once

#include "engine/cHermiteSpline.h"

namespace TmEngine {

/// A curve whose points are blended from a sequence of key frames, each a full set of control points.
class cInterpolatedHermiteSpline : public cHermiteSpline {
 public:
  cInterpolatedHermiteSpline();                                      ///< Two key frames, both the diagonal.
  explicit cInterpolatedHermiteSpline(const cHermiteSpline& pFrom);  ///< Two key frames, both pFrom's points.
  ~cInterpolatedHermiteSpline() override;

  void UpdatePointArray() override;

  /// pKeyFrameCount * pControlPointCount records, frame after frame; afterwards the points are frame 0.
  void SetKeyFrames(eSplineInterpolationMode pMode, int pControlPointCount, int pKeyFrameCount,
                    const sControlPoint* pCPs);
  /// The same from six floats a point: the point, its previous tangent, its next tangent.
  void SetKeyFrames(eSplineInterpolationMode pMode, int pControlPointCount, int pKeyFrameCount,
                    const float* pCPs);
  /// Blends the points at pT: 0 is the first frame, 1 the last. NaN and values below 0 take frame 0.
  void InterpolateKeyFrames(float pT);

  int GetKeyFrameCount() const { return fKeyFrameCount; }
  const sControlPoint* GetKeyFrames() const { return fKeyFrames; }

 private:
  void LayOutKeyFrames(int pKeyFrameCount);

  int fKeyFrameCount = 0;
  sControlPoint* fKeyFrames = nullptr;
  int fAllocatedPointCount = -1;
};

}  // namespace TmEngine
