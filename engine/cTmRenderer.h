#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "engine/base/Plane.h"
#include "engine/base/cLargeRegion.h"
#include "engine/image/ImageRows.h"
#include "engine/kernels/Kernels.h"
#include "engine/math/cMatrix33.h"
#include "engine/stages/BlackWhitePoints.h"
#include "engine/stages/CommonLook.h"
#include "engine/stages/ExposureScale.h"
#include "engine/stages/HueCurves.h"
#include "engine/stages/LayerStatistics.h"
#include "engine/stages/OutputEncoding.h"
#include "engine/stages/Preparation.h"
#include "engine/stages/ToneTables.h"

namespace TmEngine {

class cBitmapU16T;
class cHermiteSpline;
class cHueTable;
struct sExposure;
struct sStageRun;

/// What the tone curve is applied to.
enum eRendering {
  eRendering_Channels,  ///< Each channel by itself: colours gain purity with contrast, and turn.
  eRendering_Colors,    ///< Luminance: colours keep hue and purity (see stages/ColorRendering.h).
};

/// How long each stage took when it last ran.
struct sStageSeconds {
  double fPreparation = 0.0;
  double fPhase1 = 0.0;
  double fPhase2 = 0.0;
  double fFinalRendering = 0.0;
};

/// Tone-maps one picture. Four stages run in order, and only those whose inputs changed since they last ran:
/// preparation (luminance and colour of each pixel), phase 1 (base and detail layers), phase 2 (compression,
/// black and white points), final rendering (colour, tone curve, encoding).
///
/// Holds 768 KiB of tables: put it on the heap. One renderer is used by one thread at a time.
class cTmRenderer {
 public:
  cTmRenderer();
  cTmRenderer(const cTmRenderer&) = delete;
  cTmRenderer& operator=(const cTmRenderer&) = delete;
  virtual ~cTmRenderer();

  /// D50-relative XYZ, linear; any finite values. Stays the caller's. Throws cArgumentNullException.
  void SetInput(cBitmapXYZ32* pInput);
  /// An image of the input's size, whose depth and colour space the picture is encoded in. Stays the
  /// caller's.
  void SetOutput(cBitmapLDR* pOutput);
  /// Rows in place of images: the caller makes and takes the picture row by row. Both stay the caller's.
  void SetInputRows(const cRowSource& pInput);
  void SetOutputRows(cRowSink& pOutput);
  /// Curves over hue (0 to 1 for 0 to 360 degrees), neutral at 0.5: hue shift, saturation, lightness (kept,
  /// not used by this renderer). Copies are kept.
  void SetHueCurves(const cHermiteSpline* pHHCurve, const cHermiteSpline* pHSCurve,
                    const cHermiteSpline* pHLCurve);
  /// pStrength            compression of the base layer, -34 to 100; below 0 expands
  /// pToneCompression     extra compression of values far from the mean, 0 or more
  /// pStrengthInContrast  whether a Strength of 0 or more adds to the contrast
  /// pContrast            of the tone curve, -100 to 100
  /// pExposureScale       whether the picture's exposure scale applies where luminance is not stretched
  /// pExposure            stops, where luminance is not stretched
  /// pMicrocontrast       spatial scale of the base layer, 10 to 200
  /// pLighting            tonal scale of the base layer, 0 to 200
  /// pLocalContrast       extra smoothing of the base layer, 0 to 200
  /// pHorizontalWrap      the picture's left and right edges meet
  /// pTest1, pTest2       stored, without effect
  /// pWhiteClip, pBlackClip  per cent of the pixels beyond white and black
  void SetToneParameters(float pStrength, float pToneCompression, bool pStrengthInContrast, float pContrast,
                         bool pExposureScale, float pExposure, float pMicrocontrast, float pLighting,
                         float pLocalContrast, bool pHorizontalWrap, bool pTest1, bool pTest2,
                         float pWhiteClip, float pBlackClip);
  /// The same, but only the stages that depend on a parameter whose value changes run again. Not for a
  /// picture whose base or detail layer turns out to be flat, before or after: it is rendered from the values
  /// that the preparation left, which phase 2 may have replaced.
  void ChangeToneParameters(float pStrength, float pToneCompression, bool pStrengthInContrast,
                            float pContrast, bool pExposureScale, float pExposure, float pMicrocontrast,
                            float pLighting, float pLocalContrast, bool pHorizontalWrap, bool pTest1,
                            bool pTest2, float pWhiteClip, float pBlackClip);
  /// eRendering_Channels at first.
  void SetRendering(eRendering pRendering);
  /// Black and white points to use instead of those that the clip percentages give, so that a reduced picture
  /// is rendered like its original. None takes them back.
  void SetBlackWhite(const std::optional<sBlackWhite>& pPoints);
  /// What the picture shares with others; its points win over those of SetBlackWhite. None takes it back.
  void SetCommonLook(const std::optional<sCommonLook>& pLook);
  /// Whether the stages write their lines to standard error (the default).
  void SetVerbose(bool pVerbose);

  // Marks what must run again at the next Render.
  void InvalidateAll();
  void InvalidatePhase1();  ///< Phase 1 and what follows.
  void InvalidatePhase2();  ///< Phase 2 and what follows.
  void InvalidateFinalRendering();
  void InvalidateOutputEncoding();  ///< The output's encoding table, and final rendering.

  /// Runs the stale stages. Throws cInvalidOperationException for a missing image or sizes that differ,
  /// cArgumentException for a NaN in Microcontrast or Lighting, and cOutOfMemoryException or std::bad_alloc;
  /// the former also for sliders that ask for a grid beyond cBilateralGrid::IsWithinBounds.
  /// While *pCancel is set (also by another thread) the running stage stops and sets *pAborted; that stage
  /// and those after it run at the next call. All stages look at *pCancel before each row of the picture and
  /// of the grid (for rows that make up a run of 1024 pixels together, before the first of them), and about
  /// every 1024 entries of their tables; a curve renders its own to the end. Rows of the output that were not
  /// reached stay as they were.
  void Render(bool* pCancel, bool* pAborted);
  void Render();

  /// Whether the preparation holds: the input is not read again before it is set or invalidated.
  bool IsPrepared() const { return !fPrepareDirty; }
  // The stages' results, as of their last run.
  const sLuminanceRange& GetLuminanceRange() const { return fLuminance; }
  const sLayerStatistics& GetLayerStatistics() const { return fLayers; }
  const sToneTables& GetToneTables() const { return fToneTables; }
  const sBlackWhite& GetBlackWhite() const { return fPoints; }
  const float* GetToneCurve() const { return fToneCurve; }  ///< kTableSize values, 0 to 1.
  const sStageSeconds& GetStageSeconds() const { return fSeconds; }
  /// Whether both layers had a range, so that the luminance was tone-mapped.
  bool IsToneMapped() const;
  /// Passes the luminance of all pixels on, in runs: tone-mapped, or the picture's own where IsToneMapped is
  /// false. Only after a whole Render.
  void ReadLuminance(const std::function<void(const float* pLuminance, int pCount)>& pTake) const;

 private:
  void Prepare(const sStageRun& pRun);
  void AllocPlanes();
  void ToneMapPhase1(const sStageRun& pRun);
  void ToneMapPhase2(const sStageRun& pRun);
  sLayerStatistics TypicalLayers() const;
  const sBlackWhite* FindGivenPoints() const;  // null for none
  void FinalRendering(const sStageRun& pRun);
  bool RenderChannels(const sStageRun& pRun, const cMatrix33& pMatrix, const unsigned short* pEncoding);
  bool RenderColors(const sStageRun& pRun, const cMatrix33& pMatrix, const unsigned short* pEncoding);
  sExposure OutputExposure() const;
  bool UpdateToneCurve(const bool* pCancel);  // false when stopped
  void FillLuminanceCurve(const float* pSamples);

  const cRowSource* fInput = nullptr;  // not owned, or fInputImage
  cRowSink* fOutput = nullptr;         // not owned, or fOutputImage
  std::optional<cImageSource> fInputImage;
  std::optional<cImageSink> fOutputImage;
  std::unique_ptr<cHueTable> fHueTable;  // null: neutral

  cLargeRegion fRegion;  // of what follows

  // The stages' intermediate results; null until the preparation has run.
  std::unique_ptr<cBitmapU16T> fColorRecords;
  tPlane fLogLuminance;
  tPlane fBase;

  cHueCurves fHueCurves;

  sLuminanceRange fLuminance;
  sLayerStatistics fLayers;
  sToneTables fToneTables;
  sExposureScales fExposureScales;
  sBlackWhite fPoints;
  std::optional<sBlackWhite> fGivenPoints;
  std::optional<sCommonLook> fCommonLook;
  cOutputEncoding fOutputEncoding;
  float fToneCurve[kTableSize];
  int fLuminanceCurve[kLuminanceSteps + 1];  // the same curve: see kLuminanceSteps

  float fStrength = 0.0f;
  float fAfterStrength = 0.0f;  // always 0
  float fToneCompression = 0.0f;
  eRendering fRendering = eRendering_Channels;
  bool fStrengthInContrast = true;
  float fContrast = 0.0f;
  bool fExposureScale = true;
  float fExposure = 0.0f;
  float fMicrocontrast = 100.0f;
  float fLighting = 100.0f;
  float fLocalContrast = 100.0f;
  bool fHorizontalWrap = false;
  bool fTest1 = false;
  bool fTest2 = false;
  float fWhiteClip = 0.0f;
  float fBlackClip = 0.0f;

  bool fPrepareDirty = true;
  bool fPhase1Dirty = true;
  bool fPhase2Dirty = true;
  bool fFinalDirty = true;
  static constexpr float kNoContrast = -1000.0f;
  float fCachedContrast = kNoContrast;  // the first rendering sets the curve

  sStageSeconds fSeconds;

  // ProPhoto RGB is the working space.
  cMatrix33 fXYZToWorking;
  cMatrix33 fWorkingToXYZ;
  bool fVerbose = true;
};

}  // namespace TmEngine
