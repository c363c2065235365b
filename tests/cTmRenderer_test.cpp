#include "engine/cTmRenderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "engine/ToneMapImage.h"
#include "engine/cBitmapBGR16.h"
#include "engine/cBitmapXYZ32.h"
#include "engine/cHermiteSpline.h"
#include "tests/ExceptionCheck.h"
#include "tests/Pictures.h"
#include "tests/StderrCapture.h"

namespace TmEngine {
namespace {

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
  /// Renders and tells which stages wrote their line: prepare, phase 1, phase 2.
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
  std::vector<unsigned short> Pixels() {
    fRenderer->SetVerbose(false);
    fRenderer->Render();
    std::vector<unsigned short> pixels;
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

/// Expects a throw with text, signature, file and line.
template <class tException, class tCall>
void ExpectPlace(const tCall& pCall, const char* pText, const char* pSignature, int pLine) {
  EXPECT_EQ(ExpectThrow<tException>(pCall, pText), pSignature);
  try {
    pCall();
  } catch (const cException& exception) {
    EXPECT_STREQ(exception.GetFile(), ".\\cTmRenderer.cpp");
    EXPECT_EQ(std::string(exception.GetTimestamp()).size(), 24u);
    if (pLine != 0) {
      EXPECT_EQ(exception.GetLine(), pLine);
    }
  }
}

TEST(cTmRenderer, ChecksItsArgumentsAndImages) {
  const auto renderer = std::make_unique<cTmRenderer>();
  using tNull = cArgumentNullException;
  using tState = cInvalidOperationException;
  ExpectPlace<tNull>([&] { renderer->SetInput(nullptr); }, "Argument pInput is null.",
                     "void __cdecl TmEngine::cTmRenderer::SetInput(class TmEngine::cBitmapXYZ32 *)", 124);
  ExpectPlace<tNull>([&] { renderer->SetOutput(nullptr); }, "Argument pOutput is null.",
                     "void __cdecl TmEngine::cTmRenderer::SetOutput(class TmEngine::cBitmapLDR *)", 134);
  const char* const kHue =
      "void __cdecl TmEngine::cTmRenderer::SetHueCurves(const class TmEngine::cHermiteSpline *,const class "
      "TmEngine::cHermiteSpline *,const class TmEngine::cHermiteSpline *)";
  const cHermiteSpline curve;
  ExpectPlace<tNull>([&] { renderer->SetHueCurves(nullptr, nullptr, nullptr); }, "Argument pHHCurve is null.",
                     kHue, 0);
  ExpectPlace<tNull>([&] { renderer->SetHueCurves(&curve, nullptr, nullptr); }, "Argument pHSCurve is null.",
                     kHue, 0);
  ExpectPlace<tNull>([&] { renderer->SetHueCurves(&curve, &curve, nullptr); }, "Argument pHLCurve is null.",
                     kHue, 0);

  const char* const kRender = "void __cdecl TmEngine::cTmRenderer::Render(bool *,bool *)";
  const auto render = [&] { renderer->Render(); };
  cBitmapXYZ32 input(10, 5);
  cBitmapBGR16 both(11, 6, eColorSpaceID_sRGB), tall(10, 6, eColorSpaceID_sRGB);
  ExpectPlace<tState>(render, "Input image is not set.", kRender, 264);
  renderer->SetInput(&input);
  ExpectPlace<tState>(render, "Output image is not set.", kRender, 267);
  renderer->SetOutput(&both);
  ExpectPlace<tState>(render, "The input and output images do not have the same width.", kRender, 270);
  renderer->SetOutput(&tall);
  ExpectPlace<tState>(render, "The input and output images do not have the same height.", kRender, 273);
}

TEST(cTmRenderer, RunsOnlyStaleStages) {
  sJob job;
  EXPECT_EQ(job.Stages(), "pP2");
  const std::vector<unsigned short> first = job.Pixels();
  job.fRenderer->SetVerbose(true);
  EXPECT_EQ(job.Stages(), "");

  cBitmapBGR16 other(23, 17, eColorSpaceID_ProPhotoRGB);
  job.fRenderer->SetOutput(&other);
  EXPECT_EQ(job.Stages(), "");
  EXPECT_NE(std::memcmp(other.GetBitmapData(), job.fOutput.GetBitmapData(), 23 * 6), 0);

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

TEST(cTmRenderer, EncodesAnewAfterEachOutput) {
  sJob job;
  const std::vector<unsigned short> first = job.Pixels();
  job.fOutput.SetColorSpace(eColorSpaceID_AdobeRGB98);
  job.fRenderer->InvalidateOutputEncoding();
  const std::vector<unsigned short> adobe = job.Pixels();
  EXPECT_NE(adobe, first);
  sJob fresh;
  fresh.fOutput.SetColorSpace(eColorSpaceID_AdobeRGB98);
  EXPECT_EQ(fresh.Pixels(), adobe);
}

TEST(cTmRenderer, FollowsASecondStrengthInTheToneCurve) {
  sJob job;
  job.Pixels();
  job.SetParameters(90.0f);
  const std::vector<unsigned short> second = job.Pixels();
  sJob fresh;
  fresh.SetParameters(90.0f);
  EXPECT_EQ(fresh.Pixels(), second);
}

TEST(cTmRenderer, TurnsAndDesaturatesByItsHueCurves) {
  sJob job;
  const std::vector<unsigned short> neutral = job.Pixels();
  cHermiteSpline flat, low;
  sControlPoint points[2];
  points[0].fPoint = cVector2(0.0f, 0.5f);
  points[1].fPoint = cVector2(1.0f, 0.5f);
  flat.SetControlPoints(eSplineInterpolationMode_Flat, 2, points);
  job.fRenderer->SetHueCurves(&flat, &flat, &flat);
  EXPECT_EQ(job.Pixels(), neutral);
  points[0].fPoint.fY = points[1].fPoint.fY = 0.0f;
  low.SetControlPoints(eSplineInterpolationMode_Flat, 2, points);
  job.fRenderer->SetHueCurves(&flat, &low, &flat);
  const std::vector<unsigned short> grey = job.Pixels();
  for (std::size_t i = 0; i < grey.size(); i += 3) {
    EXPECT_NEAR(grey[i], grey[i + 1], 40);
    EXPECT_NEAR(grey[i], grey[i + 2], 40);
  }
  job.fRenderer->SetHueCurves(&flat, &flat, &low);
  EXPECT_EQ(job.Pixels(), neutral);
}

TEST(cTmRenderer, StopsWhenCancelledAndRunsInFullAfterwards) {
  sJob undisturbed;
  const std::vector<unsigned short> expected = undisturbed.Pixels();
  sJob job;
  job.fRenderer->SetVerbose(false);
  std::fill_n(job.fOutput.GetBitmapData(), 17 * job.fOutput.GetStride(), static_cast<unsigned char>(0xA5));
  bool cancel = true;
  bool aborted = false;
  job.fRenderer->Render(&cancel, &aborted);
  EXPECT_TRUE(aborted);
  EXPECT_EQ(job.fOutput.GetBitmapData()[0], 0xA5);

  // Cancelled in the last stage only: the pixels stay, and only that stage is left to do.
  cancel = false;
  aborted = true;
  job.fRenderer->SetVerbose(true);
  cStderrCapture capture;
  job.fRenderer->Render(&cancel, &aborted);
  EXPECT_EQ(capture.Text().rfind("Prepare for Rendering", 0), 0u);
  EXPECT_EQ(job.fOutput.GetBitmapData()[0], 0xA5);
  EXPECT_EQ(job.Pixels(), expected);
  job.fRenderer->InvalidateFinalRendering();
  std::fill_n(job.fOutput.GetBitmapData(), 17 * job.fOutput.GetStride(), static_cast<unsigned char>(0xA5));
  cancel = true;
  aborted = false;
  job.fRenderer->Render(&cancel, &aborted);
  EXPECT_TRUE(aborted);
  EXPECT_EQ(job.fOutput.GetBitmapData()[0], 0xA5);
  EXPECT_EQ(job.Pixels(), expected);
}

TEST(cTmRenderer, PassesFlatPicturesThroughTheExposurePath) {
  for (const float value : {0.0f, 0.18f, 1.0f}) {
    sJob job(5, 4);
    for (int i = 0; i < 4 * job.fInput.GetStride() / 4; ++i) job.fInput.GetBitmapData()[i] = value;
    const std::vector<unsigned short> pixels = job.Pixels();
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), pixels[1]), 20 + (pixels[0] == pixels[1] ? 40 : 0));
    EXPECT_EQ(pixels[1] > 60000, value == 1.0f);
    EXPECT_EQ(pixels[1] < 3000, value == 0.0f);
  }
}

TEST(cTmRenderer, SurvivesWhatIsNotANumber) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  sJob job;
  for (int i = 0; i < 40; ++i) job.fInput.GetBitmapData()[7 * i] = i % 2 == 0 ? nan : -1e30f;
  for (const float strength : {44.0f, nan, 1e30f, -1e30f}) {
    for (const float exposure : {0.0f, nan, 1e4f}) {
      job.SetParameters(strength, 100.0f, 60.0f, exposure);
      EXPECT_EQ(job.Pixels().size(), 23u * 17u * 3u);
    }
  }
}

TEST(ToneMapImage, AgreesWithARendererOfTheSameSettings) {
  sJob job;
  job.fRenderer->SetToneParameters(44.0f, 0.5f, true, 20.0f, true, 0.0f, 80.0f, 50.0f, 0.0f, true, false,
                                   false, 1.0f, 2.0f);
  cBitmapBGR16 output(23, 17, eColorSpaceID_sRGB);
  sToneParameters parameters;
  parameters.fStrength = 44.0f;
  parameters.fToneCompression = 0.5f;
  parameters.fMicrocontrast = 80.0f;
  parameters.fLighting = 50.0f;
  parameters.fHorizontalWrap = true;
  parameters.fWhiteClip = 1.0f;
  parameters.fBlackClip = 2.0f;
  cStderrCapture capture;
  ToneMapImage(job.fInput, &output, parameters, false);
  EXPECT_EQ(capture.Text(), "");
  const std::vector<unsigned short> expected = job.Pixels();
  for (std::size_t y = 0; y < 17; ++y) {
    EXPECT_EQ(std::memcmp(output.GetBitmapData() + y * static_cast<std::size_t>(output.GetStride()),
                          &expected[y * 69], 138),
              0);
  }
}

}  // namespace
}  // namespace TmEngine
