#pragma once

#include "engine/curve/cInterpolatedHermiteSpline.h"

namespace TmEngine {

/// The family of tone curves behind the Contrast control: five key frames from a brightening, low-contrast
/// shape (position 0) over the diagonal (0.5) to a strong S-curve (1).
class cContrastCurve : public cInterpolatedHermiteSpline {
 public:
  cContrastCurve();
  cContrastCurve(const cContrastCurve&) = delete;
  ~cContrastCurve() override;
};

}  // namespace TmEngine
