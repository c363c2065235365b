#pragma once

#include <memory>

#include "engine/math/cMatrix33.h"
#include "engine/stages/HueCurves.h"
#include "engine/stages/OutputEncoding.h"

namespace TmEngine {

class cBitmapLDR;
class cBitmapU16T;
class cHermiteSpline;
class cHueTable;
struct sStageRun;

/// Changes hue, saturation and lightness of a finished picture as functions of hue. Two stages run, and only
/// when what they read was set since they last ran: preparation (the input in the working space, kept), and
/// rendering. So a change of curves costs the rendering only.
///
/// Neutral curves give the input back, but for the quantisation of hue to 16 bits and of the output's
/// encoding table. Images whose pixels or colour spaces change while they are set must be set again.
///
/// Holds 128 KiB of tables: put it on the heap. One renderer is used by one thread at a time.
class cColorEqRenderer {
 public:
  cColorEqRenderer();
  cColorEqRenderer(const cColorEqRenderer&) = delete;
  cColorEqRenderer& operator=(const cColorEqRenderer&) = delete;
  ~cColorEqRenderer();

  /// 8 or 16 bits, of any colour space. Stays the caller's. Throws cArgumentNullException.
  void SetInput(cBitmapLDR* pInput);
  /// An image of the input's size (it may be the input), whose depth and colour space the picture is encoded
  /// in. Stays the caller's. Throws cArgumentNullException.
  void SetOutput(cBitmapLDR* pOutput);
  /// Curves over hue (0 to 1 for 0 to 360 degrees), neutral at 0.5, as they are until this is called: hue
  /// shift (a whole turn over 0 to 1), saturation (0 is grey), lightness (acts on saturated colours, not on
  /// greys). Copies are kept. Throws cArgumentNullException before anything changes.
  void SetHueCurves(const cHermiteSpline* pHHCurve, const cHermiteSpline* pHSCurve,
                    const cHermiteSpline* pHLCurve);

  /// Runs the stale stages. Throws cInvalidOperationException for a missing image or sizes that differ,
  /// cArgumentNullException for a colour space without transfers, and what cBitmapU16T and std::make_unique
  /// throw; the stage that threw, and those after it, run at the next call.
  ///
  /// While *pCancel is set (also by another thread) the running stage stops and sets *pAborted; that stage
  /// and those after it run in full at the next call. Both stages look at *pCancel before each row and
  /// while they build tables; rows of the output that were not reached stay as they were.
  void Render(bool* pCancel, bool* pAborted);
  void Render();

 private:
  void Prepare(const sStageRun& pRun);
  void RenderRows(const sStageRun& pRun);

  cBitmapLDR* fInput = nullptr;   // not owned
  cBitmapLDR* fOutput = nullptr;  // not owned
  std::unique_ptr<cHueTable> fHueTable;
  std::unique_ptr<cBitmapU16T> fHueRecords;  // null until the preparation has run
  cHueCurves fHueCurves;
  cOutputEncoding fOutputEncoding;
  bool fPrepareDirty = true;
  bool fRenderDirty = true;

  // ProPhoto RGB is the working space.
  cMatrix33 fXYZToWorking;
  cMatrix33 fWorkingToXYZ;
};

}  // namespace TmEngine
