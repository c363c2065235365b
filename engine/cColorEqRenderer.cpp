#include "engine/cColorEqRenderer.h"

#include "engine/base/TmCheck.h"
#include "engine/color/cColorSpace.h"
#include "engine/image/ImageRows.h"
#include "engine/image/cBitmapU16T.h"
#include "engine/kernels/Kernels.h"
#include "engine/stages/ColorRows.h"
#include "engine/stages/EqualiserPreparation.h"
#include "engine/stages/HueTable.h"
#include "engine/stages/RowEncoder.h"
#include "engine/stages/StageRun.h"

namespace TmEngine {

static constexpr char kSourceFile[] = ".\\cColorEqRenderer.cpp";

cColorEqRenderer::cColorEqRenderer() : fHueTable(std::make_unique<cHueTable>()) {
  const cColorSpace_ProPhotoRGB working;
  fXYZToWorking = working.GetXYZToRGB();
  fWorkingToXYZ = working.GetRGBToXYZ();
}

cColorEqRenderer::~cColorEqRenderer() = default;

void cColorEqRenderer::SetInput(cBitmapLDR* pInput) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cColorEqRenderer::SetInput(class TmEngine::cBitmapLDR *)";
  TM_CHECK(pInput != nullptr, cArgumentNullException, "Argument pInput is null.");
  fInput = pInput;
  fOutputEncoding.Invalidate();
  fPrepareDirty = true;
  fRenderDirty = true;
}

void cColorEqRenderer::SetOutput(cBitmapLDR* pOutput) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cColorEqRenderer::SetOutput(class TmEngine::cBitmapLDR *)";
  TM_CHECK(pOutput != nullptr, cArgumentNullException, "Argument pOutput is null.");
  fOutput = pOutput;
  fOutputEncoding.Invalidate();
  fRenderDirty = true;
}

void cColorEqRenderer::SetHueCurves(const cHermiteSpline* pHHCurve, const cHermiteSpline* pHSCurve,
                                    const cHermiteSpline* pHLCurve) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cColorEqRenderer::SetHueCurves(const class TmEngine::cHermiteSpline *,const "
      "class "
      "TmEngine::cHermiteSpline *,const class TmEngine::cHermiteSpline *)";
  fHueCurves.Replace(pHHCurve, pHSCurve, pHLCurve, fRenderDirty, TM_HERE);
}

void cColorEqRenderer::Render() {
  bool cancel = false;
  bool aborted = false;
  Render(&cancel, &aborted);
}

void cColorEqRenderer::Render(bool* pCancel, bool* pAborted) {
  static constexpr char kSignature[] = "void __cdecl TmEngine::cColorEqRenderer::Render(bool *,bool *)";
  TM_CHECK(fInput != nullptr, cInvalidOperationException, "Input image is not set.");
  TM_CHECK(fOutput != nullptr, cInvalidOperationException, "Output image is not set.");
  TM_CHECK(fInput->GetWidth() == fOutput->GetWidth(), cInvalidOperationException,
           "The input and output images do not have the same width.");
  TM_CHECK(fInput->GetHeight() == fOutput->GetHeight(), cInvalidOperationException,
           "The input and output images do not have the same height.");

  const sStageRun run = {pCancel, pAborted};
  if (fPrepareDirty) {
    Prepare(run);
    if (run.IsAborted()) return;
    fPrepareDirty = false;
  }
  if (fRenderDirty) {
    RenderRows(run);
    if (!run.IsAborted()) fRenderDirty = false;
  }
}

void cColorEqRenderer::Prepare(const sStageRun& pRun) {
  if (pRun.Stops()) return;
  fHueRecords.reset();  // first, so that two are never held
  fHueRecords = std::make_unique<cBitmapU16T>(fInput->GetWidth(), fInput->GetHeight(), kHueChannels);
  if (!FillHueRecords(pRun, *fInput, fXYZToWorking, *fHueRecords)) return pRun.Abort();
  pRun.Stops();
}

void cColorEqRenderer::RenderRows(const sStageRun& pRun) {
  const cMatrix33 colorMatrix = fOutput->GetColorSpace()->GetXYZToRGB() * fWorkingToXYZ;
  const unsigned short* encoding = fOutputEncoding.Table(*fOutput->GetColorSpace(), pRun.fCancel);
  if (encoding == nullptr || !fHueCurves.BuildHueTable(fHueTable, pRun.fCancel)) return pRun.Abort();
  const float* lightness = fHueCurves.Lightness();
  const sEqualiser equaliser = {fHueTable->Elements(), lightness, colorMatrix.Elements()};
  cImageSink sink(*fOutput);
  const auto fill = [&](int pY, int pX, int pCount, sColorIndices& pTo) {
    Kernels().fEqualise(equaliser, ColorRun(*fHueRecords, pY, pX), pTo.fR, pTo.fG, pTo.fB, pCount);
  };
  if (!EncodeRows(sink, fHueRecords->GetTileHeight(), encoding, pRun.fCancel, fill)) pRun.Abort();
}

}  // namespace TmEngine
