#include "engine/cTmRenderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/ToneMapImage.h"
#include "engine/curve/cHermiteSpline.h"
#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapXYZ32.h"
#include "tests/ExceptionCheck.h"
#include "tests/Numbers.h"
#include "tests/Pictures.h"
#include "tests/StderrCapture.h"

namespace TmEngine {
namespace {

using tPixels = std::vector<unsigned short>;

void FillWithTexture(cBitmapXYZ32& pImage) {
  cRandom random(11);
  for (int y = 0; y < pImage.GetHeight(); ++y) {
    float* row = pImage.GetBitmapData() + y * pImage.GetStride() / 4;
    for (int x = 0; x < 3 * pImage.GetWidth(); ++x) row[x] = std::exp2(12.0f * random.Unit() - 9.0f);
  }
}

/// A renderer with a small picture that is ready to render.
struct sJob {
  explicit sJob(int pWidth = 23, int pHeight = 17)
      : fInput(pWidth, pHeight), fOutput(pWidth, pHeight, eColorSpaceID_sRGB), fRenderer(new cTmRenderer) {
    FillWithTexture(fInput);
    fRenderer->SetInput(&fInput);
    fRenderer->SetOutput(&fOutput);
    SetParameters(44.0f);
  }

  void SetParameters(float pStrength, float pMicrocontrast = 100.0f, float pLighting = 60.0f,
                     float pExposure = 0.0f) {
    fRenderer->SetToneParameters(pStrength, 0.5f, true, 20.0f, true, pExposure, pMicrocontrast, pLighting,
                                 0.0f, false, false, false, 1.0f, 1.0f);
  }
  /// Renders; returns which stages wrote their line: prepare, phase 1, phase 2.
  std::string Stages() {
    cStderrCapture capture;
    fRenderer->Render();
    const std::string log = capture.Text();
    std::string stages;
    for (const char* line : {"Prepare for Rendering", "End ToneMappingPhase1", "==> Linear Black"}) {
      if (log.find(line) != std::string::npos) stages.push_back("pP2"[stages.size()]);
    }
    return stages;
  }
  tPixels Pixels() {
    fRenderer->SetVerbose(false);
    fRenderer->Render();
    tPixels pixels;
    for (int y = 0; y < fOutput.GetHeight(); ++y) {
      const unsigned short* row = fOutput.GetBGR16Data() + y * fOutput.GetStride() / 2;
      pixels.insert(pixels.end(), row, row + 3 * fOutput.GetWidth());
    }
    return pixels;
  }

  cBitmapXYZ32 fInput;
  cBitmapBGR16 fOutput;
  std::unique_ptr<cTmRenderer> fRenderer;
};

// The input is gone when a parameter changes: what was prepared from it is still there.
TEST(cTmRenderer, ChangesOfParametersKeepTheStagesBefore) {
  struct sParameters {
    float fStrength = 44.0f, fToneCompression = 0.5f, fContrast = 20.0f, fMicrocontrast = 100.0f;
    float fLighting = 60.0f, fWhiteClip = 1.0f, fBlackClip = 1.0f;
    bool fWrap = false;
  };
  const sParameters cases[] = {
      {.fStrength = 60.0f}, {.fToneCompression = 2.0f}, {.fContrast = -30.0f}, {.fMicrocontrast = 40.0f},
      {.fLighting = 10.0f}, {.fWhiteClip = 9.0f},       {.fBlackClip = 9.0f},  {.fWrap = true}};
  const auto pass = [](sJob& pJob, const sParameters& pP, auto pSet) {
    (*pJob.fRenderer.*pSet)(pP.fStrength, pP.fToneCompression, true, pP.fContrast, true, 0.0f,
                            pP.fMicrocontrast, pP.fLighting, 0.0f, pP.fWrap, false, false, pP.fWhiteClip,
                            pP.fBlackClip);
  };
  const tPixels first = sJob().Pixels();
  for (const sParameters& changed : cases) {
    sJob job;
    job.Pixels();
    std::fill_n(job.fInput.GetBitmapData(), 3, 1e6f);
    pass(job, changed, &cTmRenderer::ChangeToneParameters);
    sJob fresh;
    pass(fresh, changed, &cTmRenderer::SetToneParameters);
    const tPixels expected = fresh.Pixels();
    EXPECT_EQ(job.Pixels(), expected);
    EXPECT_NE(expected, first);
  }
}

TEST(cTmRenderer, TakesTheBlackAndWhiteThatAreGiven) {
  sJob found;
  const tPixels pixels = found.Pixels();
  sJob given;
  const sBlackWhite points = found.fRenderer->GetBlackWhite();
  given.fRenderer->SetBlackWhite(sBlackWhite{points.fBlack, 2.0f * points.fWhite});
  EXPECT_NE(given.Pixels(), pixels);
  EXPECT_EQ(given.fRenderer->GetBlackWhite().fWhite, 2.0f * points.fWhite);
  given.fRenderer->SetBlackWhite(std::nullopt);
  EXPECT_EQ(given.Pixels(), pixels);
}

/// A call that throws, with the member that it names and the line that hosts know (0: any).
struct sThrow {
  const char *fMember, *fText;
  int fLine;
  std::function<void()> fCall;
};

template <class tException>
void ExpectThrows(const std::vector<sThrow>& pRows) {
  for (const sThrow& row : pRows) {
    EXPECT_EQ(ExpectThrow<tException>(row.fCall, row.fText, ".\\cTmRenderer.cpp", row.fLine),
              std::string("void __cdecl TmEngine::cTmRenderer::") + row.fMember);
  }
}

TEST(cTmRenderer, ChecksItsArgumentsAndImages) {
  const auto renderer = std::make_unique<cTmRenderer>();
  const cHermiteSpline curve;
  cBitmapXYZ32 input(10, 5);
  cBitmapBGR16 both(11, 6, eColorSpaceID_sRGB), tall(10, 6, eColorSpaceID_sRGB);
  const auto setCurves = [&](auto pHH, auto pHS) {
    return [=, &renderer] { renderer->SetHueCurves(pHH, pHS, nullptr); };
  };
  const auto renderTo = [&](cBitmapBGR16& pOutput) { renderer->SetOutput(&pOutput), renderer->Render(); };
  const char* const hue =
      "SetHueCurves(const class TmEngine::cHermiteSpline *,const class TmEngine::cHermiteSpline *,"
      "const class TmEngine::cHermiteSpline *)";
  const char* const render = "Render(bool *,bool *)";
  ExpectThrows<cArgumentNullException>(
      {{"SetInput(class TmEngine::cBitmapXYZ32 *)", "Argument pInput is null.", 124,
        [&] { renderer->SetInput(nullptr); }},
       {"SetOutput(class TmEngine::cBitmapLDR *)", "Argument pOutput is null.", 134,
        [&] { renderer->SetOutput(nullptr); }},
       {hue, "Argument pHHCurve is null.", 0, setCurves(nullptr, nullptr)},
       {hue, "Argument pHSCurve is null.", 0, setCurves(&curve, nullptr)},
       {hue, "Argument pHLCurve is null.", 0, setCurves(&curve, &curve)}});
  ExpectThrows<cInvalidOperationException>(
      {{render, "Input image is not set.", 264, [&] { renderer->Render(); }},
       {render, "Output image is not set.", 267, [&] { renderer->SetInput(&input), renderer->Render(); }},
       {render, "The input and output images do not have the same width.", 270, [&] { renderTo(both); }},
       {render, "The input and output images do not have the same height.", 273, [&] { renderTo(tall); }}});
}

TEST(cTmRenderer, RunsOnlyStaleStages) {
  sJob job;
  EXPECT_EQ(job.Stages(), "pP2");
  const tPixels first = job.Pixels();
  job.fRenderer->SetVerbose(true);
  EXPECT_EQ(job.Stages(), "");

  cBitmapBGR16 other(23, 17, eColorSpaceID_ProPhotoRGB);
  job.fRenderer->SetOutput(&other);
  EXPECT_EQ(job.Stages(), "");
  sJob fresh;
  fresh.fOutput.SetColorSpace(eColorSpaceID_ProPhotoRGB);
  fresh.Pixels();
  EXPECT_EQ(std::memcmp(other.GetBitmapData(), fresh.fOutput.GetBitmapData(), 23 * 6), 0);

  job.SetParameters(44.0f);
  EXPECT_EQ(job.Stages(), "pP2");
  job.fRenderer->InvalidatePhase2();
  EXPECT_EQ(job.Stages().size(), 1u);
  job.fRenderer->InvalidatePhase1();
  EXPECT_EQ(job.Stages().size(), 2u);
  job.fRenderer->InvalidateFinalRendering();
  EXPECT_EQ(job.Stages(), "");
  job.fRenderer->SetInput(&job.fInput);
  job.fRenderer->SetOutput(&job.fOutput);
  EXPECT_EQ(job.Pixels(), first);
}

TEST(cTmRenderer, FollowsANewColorSpaceAndASecondStrength) {
  sJob job, fresh;
  const tPixels first = job.Pixels();
  job.fOutput.SetColorSpace(eColorSpaceID_AdobeRGB98);
  job.fRenderer->InvalidateOutputEncoding();
  fresh.fOutput.SetColorSpace(eColorSpaceID_AdobeRGB98);
  EXPECT_NE(job.Pixels(), first);
  EXPECT_EQ(job.Pixels(), fresh.Pixels());
  job.SetParameters(90.0f);
  sJob strong;
  strong.fOutput.SetColorSpace(eColorSpaceID_AdobeRGB98);
  strong.SetParameters(90.0f);
  EXPECT_EQ(job.Pixels(), strong.Pixels());
}

TEST(cTmRenderer, TurnsAndDesaturatesByItsHueCurves) {
  sJob job;
  const tPixels neutral = job.Pixels();
  cHermiteSpline flat, low;
  for (const auto& [curve, y] : {std::pair{&flat, 0.5f}, {&low, 0.0f}}) {
    const sControlPoint points[] = {{{0.0f, y}, {}, {}, 0}, {{1.0f, y}, {}, {}, 0}};
    curve->SetControlPoints(eSplineInterpolationMode_Flat, 2, points);
  }
  job.fRenderer->SetHueCurves(&flat, &flat, &flat);
  EXPECT_EQ(job.Pixels(), neutral);
  job.fRenderer->SetHueCurves(&flat, &low, &flat);
  const tPixels grey = job.Pixels();
  for (std::size_t i = 0; i < grey.size(); i += 3) {
    EXPECT_NEAR(grey[i], grey[i + 1], 40);
    EXPECT_NEAR(grey[i], grey[i + 2], 40);
  }
  job.fRenderer->SetHueCurves(&flat, &flat, &low);
  EXPECT_EQ(job.Pixels(), neutral);
}

TEST(cTmRenderer, StopsWhenCancelledAndRunsInFullAfterwards) {
  sJob undisturbed, job;
  const tPixels expected = undisturbed.Pixels();
  const auto render = [&job](bool pCancel, bool pAborted) {
    std::fill_n(job.fOutput.GetBitmapData(), 17 * job.fOutput.GetStride(), static_cast<unsigned char>(0xA5));
    cStderrCapture capture;
    job.fRenderer->Render(&pCancel, &pAborted);
    EXPECT_TRUE(pAborted);
    EXPECT_EQ(job.fOutput.GetBitmapData()[0], 0xA5);
    return capture.Text();
  };
  EXPECT_EQ(render(true, false), "");
  EXPECT_EQ(render(false, true).rfind("Prepare for Rendering", 0), 0u);  // the flag of a run before
  EXPECT_EQ(job.Pixels(), expected);
  job.fRenderer->InvalidateFinalRendering();  // cancelled in the last stage, which is left to do
  render(true, false);
  EXPECT_EQ(job.Pixels(), expected);
}

TEST(cTmRenderer, SurvivesNaN) {
  sJob job;
  for (int i = 0; i < 40; ++i) job.fInput.GetBitmapData()[7 * i] = i % 2 == 0 ? kNaN : -1e30f;
  for (const float strength : {44.0f, kNaN, 1e30f, -1e30f}) {
    for (const float exposure : {0.0f, kNaN, 1e4f}) {
      job.SetParameters(strength, 100.0f, 60.0f, exposure);
      EXPECT_EQ(job.Pixels().size(), 23u * 17u * 3u);
    }
  }
}

TEST(ToneMapImage, IsSilentUnlessAsked) {
  sJob job;
  for (const bool verbose : {false, true}) {
    cStderrCapture capture;
    ToneMapImage(job.fInput, &job.fOutput, {}, verbose);
    EXPECT_EQ(capture.Text().empty(), !verbose);
  }
}

}  // namespace
}  // namespace TmEngine
