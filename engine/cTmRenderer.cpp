#include "engine/cTmRenderer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>

#include "engine/base/TmCheck.h"
#include "engine/base/cMemUtils.h"
#include "engine/color/cColorSpace.h"
#include "engine/curve/cContrastCurve.h"
#include "engine/image/PixelRows.h"
#include "engine/image/cBitmapU16T.h"
#include "engine/kernels/Kernels.h"
#include "engine/math/Elementary.h"
#include "engine/stages/BaseLayer.h"
#include "engine/stages/BilateralGrid.h"
#include "engine/stages/ColorRendering.h"
#include "engine/stages/ColorRows.h"
#include "engine/stages/HueTable.h"
#include "engine/stages/RowEncoder.h"
#include "engine/stages/StageRun.h"
#include "engine/stages/ToneMapping.h"

namespace TmEngine {

static constexpr char kSourceFile[] = ".\\cTmRenderer.cpp";

namespace {

/// Cell size in pixels: one to ten per cent of the picture's larger side over the control's range.
float SpatialSigma(float pLargerSide, float pMicrocontrast) {
  const float scale = pMicrocontrast < 100.0f ? (pMicrocontrast - 10.0f) * 15.0f / 90.0f + 10.0f
                                              : (pMicrocontrast - 100.0f) * 75.0f / 100.0f + 25.0f;
  return std::max(pLargerSide / 1000.0f * scale, pLargerSide / 1000.0f);
}

/// Cell size in decades of luminance.
float RangeSigma(float pLighting) {
  return std::max(pLighting * 0.4f / 200.0f + 0.2f, 0.01f);
}

/// What the stages keep of all pixels.
std::size_t PixelBytes(int pWidth, int pHeight) {
  constexpr double kRecordBytes = 2.0 * kColorChannels, kEnds = 256.0, kNoneHasMore = 1e18;
  const auto padded = static_cast<double>(cMemUtils::RoundUpTo4(pWidth)) *
                      static_cast<double>(cMemUtils::RoundUpTo4(pHeight));
  const double planes = 2.0 * sizeof(float) * pWidth * pHeight;
  return static_cast<std::size_t>(std::min(padded * kRecordBytes + planes + kEnds, kNoneHasMore));
}

}  // namespace

cTmRenderer::cTmRenderer() {
  const cColorSpace_ProPhotoRGB working;
  fXYZToWorking = working.GetXYZToRGB();
  fWorkingToXYZ = working.GetRGBToXYZ();
}

cTmRenderer::~cTmRenderer() = default;

void cTmRenderer::SetInput(cBitmapXYZ32* pInput) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cTmRenderer::SetInput(class TmEngine::cBitmapXYZ32 *)";
  TM_CHECK_LINE(124, pInput != nullptr, cArgumentNullException, "Argument pInput is null.");
  SetInputRows(fInputImage.emplace(*pInput));
}

void cTmRenderer::SetOutput(cBitmapLDR* pOutput) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cTmRenderer::SetOutput(class TmEngine::cBitmapLDR *)";
  TM_CHECK_LINE(134, pOutput != nullptr, cArgumentNullException, "Argument pOutput is null.");
  SetOutputRows(fOutputImage.emplace(*pOutput));
}

void cTmRenderer::SetInputRows(const cRowSource& pInput) {
  fInput = &pInput;
  fOutputEncoding.Invalidate();
  InvalidateAll();
}

void cTmRenderer::SetOutputRows(cRowSink& pOutput) {
  fOutput = &pOutput;
  InvalidateOutputEncoding();
}

void cTmRenderer::SetHueCurves(const cHermiteSpline* pHHCurve, const cHermiteSpline* pHSCurve,
                               const cHermiteSpline* pHLCurve) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cTmRenderer::SetHueCurves(const class TmEngine::cHermiteSpline *,const class "
      "TmEngine::cHermiteSpline *,const class TmEngine::cHermiteSpline *)";
  fHueCurves.Replace(pHHCurve, pHSCurve, pHLCurve, fFinalDirty, TM_HERE);
}

void cTmRenderer::SetToneParameters(float pStrength, float pToneCompression, bool pStrengthInContrast,
                                    float pContrast, bool pExposureScale, float pExposure,
                                    float pMicrocontrast, float pLighting, float pLocalContrast,
                                    bool pHorizontalWrap, bool pTest1, bool pTest2, float pWhiteClip,
                                    float pBlackClip) {
  InvalidateAll();
  ChangeToneParameters(pStrength, pToneCompression, pStrengthInContrast, pContrast, pExposureScale, pExposure,
                       pMicrocontrast, pLighting, pLocalContrast, pHorizontalWrap, pTest1, pTest2, pWhiteClip,
                       pBlackClip);
}

void cTmRenderer::ChangeToneParameters(float pStrength, float pToneCompression, bool pStrengthInContrast,
                                       float pContrast, bool pExposureScale, float pExposure,
                                       float pMicrocontrast, float pLighting, float pLocalContrast,
                                       bool pHorizontalWrap, bool pTest1, bool pTest2, float pWhiteClip,
                                       float pBlackClip) {
  fTest1 = pTest1;
  fTest2 = pTest2;
  fAfterStrength = 0.0f;
  if (fStrength != pStrength || fToneCompression != pToneCompression || fWhiteClip != pWhiteClip ||
      fBlackClip != pBlackClip) {
    fStrength = pStrength;
    fToneCompression = pToneCompression;
    fWhiteClip = pWhiteClip;
    fBlackClip = pBlackClip;
    InvalidatePhase2();
  }
  if (fStrengthInContrast != pStrengthInContrast || fContrast != pContrast) {
    fStrengthInContrast = pStrengthInContrast;
    fContrast = pContrast;
    InvalidateFinalRendering();
  }
  if (fExposureScale != pExposureScale || fExposure != pExposure) {
    fExposureScale = pExposureScale;
    fExposure = pExposure;
    InvalidateFinalRendering();
  }
  if (fMicrocontrast != pMicrocontrast || fLighting != pLighting || fLocalContrast != pLocalContrast ||
      fHorizontalWrap != pHorizontalWrap) {
    fMicrocontrast = pMicrocontrast;
    fLighting = pLighting;
    fLocalContrast = pLocalContrast;
    fHorizontalWrap = pHorizontalWrap;
    InvalidatePhase1();
  }
}

void cTmRenderer::SetBlackWhite(const std::optional<sBlackWhite>& pPoints) {
  fGivenPoints = pPoints;
  InvalidatePhase2();
}

void cTmRenderer::SetCommonLook(const std::optional<sCommonLook>& pLook) {
  fCommonLook = pLook;
  InvalidatePhase1();
}

void cTmRenderer::SetVerbose(bool pVerbose) {
  fVerbose = pVerbose;
}

void cTmRenderer::SetRendering(eRendering pRendering) {
  if (fRendering != pRendering) InvalidateFinalRendering();
  fRendering = pRendering;
}

void cTmRenderer::InvalidateAll() {
  fPrepareDirty = true;
  InvalidatePhase1();
}

void cTmRenderer::InvalidatePhase1() {
  fPhase1Dirty = true;
  InvalidatePhase2();
}

void cTmRenderer::InvalidatePhase2() {
  fPhase2Dirty = true;
  InvalidateFinalRendering();
}

void cTmRenderer::InvalidateFinalRendering() {
  fFinalDirty = true;
}

void cTmRenderer::InvalidateOutputEncoding() {
  fOutputEncoding.Invalidate();
  InvalidateFinalRendering();
}

void cTmRenderer::Render() {
  bool cancel = false;
  bool aborted = false;
  Render(&cancel, &aborted);
}

void cTmRenderer::Render(bool* pCancel, bool* pAborted) {
  static constexpr char kSignature[] = "void __cdecl TmEngine::cTmRenderer::Render(bool *,bool *)";
  TM_CHECK_LINE(264, fInput != nullptr, cInvalidOperationException, "Input image is not set.");
  TM_CHECK_LINE(267, fOutput != nullptr, cInvalidOperationException, "Output image is not set.");
  TM_CHECK_LINE(270, fInput->GetWidth() == fOutput->GetWidth(), cInvalidOperationException,
                "The input and output images do not have the same width.");
  TM_CHECK_LINE(273, fInput->GetHeight() == fOutput->GetHeight(), cInvalidOperationException,
                "The input and output images do not have the same height.");

  struct sStage {
    bool cTmRenderer::*fDirty;
    void (cTmRenderer::*fRun)(const sStageRun&);
    double sStageSeconds::*fSeconds;
  };
  static constexpr sStage kStages[] = {
      {&cTmRenderer::fPrepareDirty, &cTmRenderer::Prepare, &sStageSeconds::fPreparation},
      {&cTmRenderer::fPhase1Dirty, &cTmRenderer::ToneMapPhase1, &sStageSeconds::fPhase1},
      {&cTmRenderer::fPhase2Dirty, &cTmRenderer::ToneMapPhase2, &sStageSeconds::fPhase2},
      {&cTmRenderer::fFinalDirty, &cTmRenderer::FinalRendering, &sStageSeconds::fFinalRendering}};
  const sStageRun run = {pCancel, pAborted, cStageLog(fVerbose)};
  for (const sStage& stage : kStages) {
    if (!(this->*stage.fDirty)) continue;
    const auto start = std::chrono::steady_clock::now();
    (this->*stage.fRun)(run);
    fSeconds.*stage.fSeconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (run.IsAborted()) return;
    this->*stage.fDirty = false;
  }
}

void cTmRenderer::Prepare(const sStageRun& pRun) {
  if (pRun.Stops()) return;
  AllocPlanes();
  if (!PrepareColors(pRun, *fInput, fXYZToWorking, *fColorRecords, fLogLuminance.get(), fLuminance)) {
    return pRun.Abort();
  }
  pRun.fLog.Preparation(fLuminance);
  pRun.Stops();
}

/// The planes of the run before go first, so that two sets are never held; new ones are kept only when all
/// of them could be allocated.
void cTmRenderer::AllocPlanes() {
  static constexpr char kSignature[] = "void __cdecl TmEngine::cTmRenderer::Prepare(bool *,bool *)";
  fColorRecords.reset();
  fLogLuminance.reset();
  fBase.reset();
  fRegion = cLargeRegion();
  const int width = fInput->GetWidth();
  const int height = fInput->GetHeight();
  cLargeRegion region(PixelBytes(width, height));
  auto records = std::make_unique<cBitmapU16T>(width, height, kColorChannels, &region);
  tPlane logLuminance = AllocPlane(width, height, &region);
  tPlane base = logLuminance != nullptr ? AllocPlane(width, height, &region) : nullptr;
  TM_CHECK(base != nullptr, cOutOfMemoryException, "Cannot alloc bitmap array.");
  fRegion = std::move(region);
  fColorRecords = std::move(records);
  fLogLuminance = std::move(logLuminance);
  fBase = std::move(base);
}

void cTmRenderer::ToneMapPhase1(const sStageRun& pRun) {
  static constexpr char kSignature[] = "void __cdecl TmEngine::cTmRenderer::ToneMapPhase1(bool *,bool *)";
  TM_CHECK(!std::isnan(fMicrocontrast), cArgumentException, "Argument pMicrocontrast is out of range.");
  TM_CHECK(!std::isnan(fLighting), cArgumentException, "Argument pLighting is out of range.");
  const int width = fInput->GetWidth();
  const int height = fInput->GetHeight();
  const float largerSide = static_cast<float>(std::max(width, height));
  const float rangeSigma = RangeSigma(fLighting);
  const sBaseFilter filter = {SpatialSigma(largerSide, fMicrocontrast),
                              rangeSigma,
                              fCommonLook ? AlignedStart(fLuminance.fLogMin, rangeSigma) : fLuminance.fLogMin,
                              fLuminance.fLogMax,
                              fLocalContrast / 100.0f,
                              fHorizontalWrap};
  TM_CHECK(cBilateralGrid::IsWithinBounds(width, height, filter.fSigmaS, filter.fSigmaR, filter.fRangeMin,
                                          filter.fRangeMax),
           cOutOfMemoryException, "Microcontrast and Lighting ask for a grid far larger than the picture.");
  if (!FormBaseLayer(pRun, fLogLuminance.get(), fBase.get(), width, height, filter, fLayers)) pRun.Abort();
  if (pRun.IsAborted()) return;
  pRun.fLog.Layers(width, height, fLayers, fLuminance);
}

sLayerStatistics cTmRenderer::TypicalLayers() const {
  sLayerStatistics layers = fLayers;
  if (fCommonLook && fCommonLook->fMeans) {
    layers.fBaseMean = static_cast<double>(fCommonLook->fMeans->fBase);
    layers.fDetailMagnitude = static_cast<double>(fCommonLook->fMeans->fDetail);
  }
  return layers;
}

const sBlackWhite* cTmRenderer::FindGivenPoints() const {
  if (fCommonLook && fCommonLook->fPoints) return &*fCommonLook->fPoints;
  return fGivenPoints ? &*fGivenPoints : nullptr;
}

bool cTmRenderer::IsToneMapped() const {
  return fLayers.fBaseMax - fLayers.fBaseMin > 0.0f && fLayers.fDetailMax - fLayers.fDetailMin > 0.0f;
}

void cTmRenderer::ReadLuminance(const std::function<void(const float* pLuminance, int pCount)>& pTake) const {
  cBitmapU16T& records = *fColorRecords;
  ForEachRun(records.GetWidth(), records.GetHeight(), records.GetTileHeight(), nullptr,
             [&](int pY, int pX, int pCount) { pTake(ColorRun(records, pY, pX).fLuminance, pCount); });
}

void cTmRenderer::ToneMapPhase2(const sStageRun& pRun) {
  const float exponent = GlobalExponent(fStrength);
  if (!BuildToneTables(exponent, fToneCompression, TypicalLayers(), fToneTables, pRun.fCancel))
    return pRun.Abort();
  if (pRun.Stops()) return;
  if (!IsToneMapped()) return;
  fExposureScales = ExposureScales(exponent, fLuminance.fMax, fLayers.fBaseMax);
  pRun.fLog.Compression(exponent, fToneTables, fLayers, fLuminance, fExposureScales);

  sToneMappedRange range;
  if (!ToneMapLuminance(pRun, fLogLuminance.get(), fBase.get(), fLayers, fToneTables, *fColorRecords, range))
    return pRun.Abort();
  if (pRun.Stops()) return;
  const double pixels = static_cast<double>(fInput->GetWidth()) * fInput->GetHeight();
  pRun.fLog.ToneMapped(range, pixels, fLuminance, fExposureScales);

  const cLuminanceHistogram histogram(*fColorRecords, range, pRun);
  if (histogram.WasStopped()) return pRun.Abort();
  const sBlackWhite* const given = FindGivenPoints();
  fPoints = given != nullptr ? *given : histogram.Points(fBlackClip, fWhiteClip);
  pRun.fLog.BlackAndWhite(histogram, fPoints, range);
}

void cTmRenderer::FinalRendering(const sStageRun& pRun) {
  const cColorSpace& space = fOutput->GetColorSpace();
  const cMatrix33 colorMatrix = space.GetXYZToRGB() * fWorkingToXYZ;
  if (!UpdateToneCurve(pRun.fCancel)) return pRun.Abort();
  const unsigned short* encoding = fOutputEncoding.Table(space, pRun.fCancel);
  if (encoding == nullptr || !fHueCurves.BuildHueTable(fHueTable, pRun.fCancel)) return pRun.Abort();
  if (pRun.Stops()) return;

  const bool isDone = fRendering == eRendering_Colors ? RenderColors(pRun, colorMatrix, encoding)
                                                      : RenderChannels(pRun, colorMatrix, encoding);
  if (!isDone) pRun.Abort();
}

bool cTmRenderer::RenderChannels(const sStageRun& pRun, const cMatrix33& pMatrix,
                                 const unsigned short* pEncoding) {
  const sExposure exposure = OutputExposure();
  const float* const hues = fHueTable != nullptr ? fHueTable->Elements() : nullptr;
  const sKernels& kernels = Kernels();
  const auto fill = [&](int pY, int pX, int pCount, sColorIndices& pTo) {
    kernels.fColorIndices(ColorRun(*fColorRecords, pY, pX), hues, exposure, pTo.fR, pTo.fG, pTo.fB, pCount);
    kernels.fTransformIndices(pMatrix.Elements(), fToneCurve, pTo.fR, pTo.fG, pTo.fB, pCount);
  };
  return EncodeRows(*fOutput, fColorRecords->GetTileHeight(), pEncoding, pRun.fCancel, fill);
}

bool cTmRenderer::RenderColors(const sStageRun& pRun, const cMatrix33& pMatrix,
                               const unsigned short* pEncoding) {
  const float* const hues = fHueTable != nullptr ? fHueTable->Elements() : nullptr;
  const auto rendering = std::make_unique<cColorRendering>(
      cColorRendering::sInput{fOutput->GetColorSpace(), pMatrix, fLuminanceCurve, hues, OutputExposure(),
                              pEncoding, fOutput->GetBitDepth()});
  const auto fill = [&](int pY, int pX, int pCount, sColorIndices& pTo) {
    rendering->Fill(ColorRun(*fColorRecords, pY, pX), pCount, pTo);
  };
  const auto put = [&](const sColorIndices& pLight, int pOffset, const sSampleRow& pRow, int pX, int pCount) {
    rendering->Put(pLight, pOffset, pRow, pX, pCount);
  };
  return WriteRows(*fOutput, fColorRecords->GetTileHeight(), pRun.fCancel, fill, put);
}

/// Luminance is stretched between the black and white points; the gain applies where it is not.
sExposure cTmRenderer::OutputExposure() const {
  const double scale = fExposureScale ? static_cast<double>(fExposureScales.fInput) : 1.0;
  const float gain = static_cast<float>(Pow(2.0, static_cast<double>(fExposure)) * scale);
  const float stretch = fPoints.fWhite > fPoints.fBlack ? 1.0f / (fPoints.fWhite - fPoints.fBlack) : 1.0f;
  return {gain, stretch, fPoints.fBlack};
}

bool cTmRenderer::UpdateToneCurve(const bool* pCancel) {
  float contrast = (fContrast + 100.0f) / 200.0f;
  if (fStrengthInContrast && fStrength >= 0.0f) {
    contrast = fStrength * 0.35f / 100.0f + contrast;
    if (contrast > 1.0f) contrast = 1.0f;
  }
  if (contrast == fCachedContrast) return true;
  fCachedContrast = kNoContrast;  // until the table is whole
  cContrastCurve curve;
  curve.InterpolateKeyFrames(contrast);
  // The samples of 16 bits, without a table of them.
  const float* samples = curve.GetFloatTable();
  for (int start = 0; start < kTableSize; start += kRunLength) {
    if (IsSet(pCancel)) return false;
    int codes[kRunLength];
    Kernels().fQuantise(samples + start, 0.0f, 1.0f, codes, kRunLength);
    for (int i = 0; i < kRunLength; ++i) fToneCurve[start + i] = static_cast<float>(codes[i]) / 65535.0f;
  }
  FillLuminanceCurve(samples);
  fCachedContrast = contrast;
  return true;
}

void cTmRenderer::FillLuminanceCurve(const float* pSamples) {
  constexpr int kStride = (kTableSize - 1) / kLuminanceSteps;
  const auto unitsAt = [&](int pStep) {
    const float sample = pSamples[kStride * pStep];
    const float held = sample > 0.0f ? std::min(sample, 1.0f) : 0.0f;
    return static_cast<int>(std::lround(held * static_cast<float>(kLuminanceUnits)));
  };
  for (int i = 0; i <= kLuminanceSteps; ++i) {
    const int rise = i < kLuminanceSteps ? unitsAt(i + 1) - unitsAt(i) : 0;
    fLuminanceCurve[i] = unitsAt(i) << kRiseBits | std::clamp(rise, 0, (1 << kRiseBits) - 1);
  }
}

}  // namespace TmEngine
