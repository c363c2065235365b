#pragma once

#include <memory>

namespace TmEngine {

class cHermiteSpline;
class cHueTable;
struct sThrowPlace;

/// The three curves over hue (0 to 1 for 0 to 360 degrees) of both renderers: hue shift, saturation,
/// lightness. Neutral, flat at 0.5, at first.
class cHueCurves {
 public:
  cHueCurves();
  ~cHueCurves();
  /// Keeps copies of the curves that differ from the held ones, and sets pDirty at each. Throws
  /// cArgumentNullException in the name of pPlace before anything changes, or std::bad_alloc, with the curves
  /// before the one that failed replaced.
  void Replace(const cHermiteSpline* pHHCurve, const cHermiteSpline* pHSCurve, const cHermiteSpline* pHLCurve,
               bool& pDirty, const sThrowPlace& pPlace);

  /// Builds pTable from hue shift and saturation, when a curve has changed since; pass the same table each
  /// time. While the curves have always been neutral, a new table is left as it is, and null where there is
  /// none. Throws std::bad_alloc. Polls pCancel before each curve's table and while it builds pTable; returns
  /// false, with pTable still to be built, when it is set.
  bool BuildHueTable(std::unique_ptr<cHueTable>& pTable, const bool* pCancel);
  /// The lightness curve's 65,536 samples, 0.5 is neutral. They hold until the next Replace.
  const float* Lightness() const;

 private:
  std::unique_ptr<cHermiteSpline> fHHCurve;
  std::unique_ptr<cHermiteSpline> fHSCurve;
  std::unique_ptr<cHermiteSpline> fHLCurve;
  bool fIsTableStale = false;
};

}  // namespace TmEngine
