#include "engine/cColorEqRenderer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "engine/color/cTransfer.h"
#include "engine/curve/cHermiteSpline.h"
#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapBGR8.h"
#include "engine/image/cBitmapU16T.h"
#include "engine/stages/ColorRows.h"
#include "engine/stages/EqualiserPreparation.h"
#include "engine/stages/StageRun.h"
#include "tests/Numbers.h"
#include "tests/Pictures.h"
#include "tests/engine/image/BitmapTestTools.h"
#include "tests/reference/ReferenceHue.h"

namespace TmEngine {
namespace {

using tImage = std::unique_ptr<cBitmapLDR>;
using tCurve = std::unique_ptr<cHermiteSpline>;
using tBytes = std::vector<unsigned char>;
constexpr unsigned char kUntouched = 0xA5;

tImage NewImage(int pDepth, int pWidth, int pHeight, int pSpace) {
  const auto id = static_cast<eColorSpaceID>(pSpace);
  if (pDepth == 8) return std::make_unique<cBitmapBGR8>(pWidth, pHeight, id);
  return std::make_unique<cBitmapBGR16>(pWidth, pHeight, id);
}

/// The whole block, with the padding of width and height.
tBytes Bytes(cBitmapLDR& pImage) {
  const unsigned char* data = pImage.GetBitmapData();
  return {data, data + pImage.GetStride() * ((pImage.GetHeight() + 3) / 4 * 4)};
}

void Wipe(cBitmapLDR& pImage) {
  std::fill_n(pImage.GetBitmapData(), Bytes(pImage).size(), kUntouched);
}

int Sample(cBitmapLDR& pImage, int pX, int pY, int pChannel) {
  const unsigned char* row = pImage.GetBitmapData() + pY * pImage.GetStride();
  if (pImage.GetBitDepth() == 8) return row[3 * pX + pChannel];
  return reinterpret_cast<const unsigned short*>(row)[3 * pX + pChannel];
}

/// Any colours, with black, white, primaries and greys among them.
void FillWithColors(cBitmapLDR& pImage) {
  cRandom random(5);
  Wipe(pImage);
  const int size = pImage.GetBitDepth() / 8;
  for (int i = 0; i < pImage.GetWidth() * pImage.GetHeight(); ++i) {
    unsigned char* pixel = pImage.GetBitmapData() + i / pImage.GetWidth() * pImage.GetStride() +
                           i % pImage.GetWidth() * 3 * size;
    const int kind = random.Below(4);
    for (int k = 0; k < 3 * size; ++k) {
      const int corner = k % size == 0 ? 255 * random.Below(2) : pixel[k - 1];
      const int grey = k < size ? random.Below(256) : pixel[k - size];
      pixel[k] = static_cast<unsigned char>(kind == 0 ? corner : kind == 1 ? grey : random.Below(256));
    }
  }
}

tCurve Curve(const std::vector<float>& pValues = {0.5f, 0.5f}) {
  std::vector<sControlPoint> points(pValues.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    points[i].fPoint = cVector2(static_cast<float>(i) / static_cast<float>(points.size() - 1), pValues[i]);
  }
  auto curve = std::make_unique<cHermiteSpline>();
  curve->SetControlPoints(eSplineInterpolationMode_Flat, static_cast<int>(points.size()), points.data());
  return curve;
}

struct sCurves {
  tCurve fHH = Curve();
  tCurve fHS = Curve();
  tCurve fHL = Curve();
};

sCurves StrongCurves() {
  return {Curve({0.4f, 0.9f, 0.0f, 0.55f}), Curve({0.9f, 0.3f, 1.0f, 0.0f, 0.7f}), Curve({0.2f, 1.0f, 0.0f})};
}

struct sJob {
  sJob(int pInDepth, int pOutDepth, int pWidth, int pHeight, int pInSpace, int pOutSpace)
      : fInput(NewImage(pInDepth, pWidth, pHeight, pInSpace)),
        fOutput(NewImage(pOutDepth, pWidth, pHeight, pOutSpace)) {
    FillWithColors(*fInput);
    Wipe(*fOutput);
    fRenderer->SetInput(fInput.get());
    fRenderer->SetOutput(fOutput.get());
  }
  void SetCurves(const sCurves& pCurves) {
    fRenderer->SetHueCurves(pCurves.fHH.get(), pCurves.fHS.get(), pCurves.fHL.get());
  }
  /// The output's block after a run.
  tBytes Rendered() {
    fRenderer->Render();
    return Bytes(*fOutput);
  }

  tImage fInput, fOutput;
  std::unique_ptr<cColorEqRenderer> fRenderer = std::make_unique<cColorEqRenderer>();
};

// The formulas once more, pixel by pixel, nothing tabulated but the curves.

Reference::sHexcone HueColor(int pHue, const sCurves& pCurves) {
  const int shifted = (pCurves.fHH->Get16BitTable()[pHue] - 32767 + pHue + 65536) % 65536;
  return Reference::HexconeColor(shifted, 1.0f - 2.0f * pCurves.fHS->GetFloatTable()[pHue]);
}

int Encoded(float pLinear, const cBitmapLDR& pOutput) {
  const float shifted = pLinear + 1.0f;
  int index = 0;
  if (shifted > 1.0f) index = static_cast<int>(std::min((double{shifted} - 1.0) * 65536.0, 65535.0));
  const cTransfer& fromLinear = *pOutput.GetColorSpace()->GetFromLinear();
  const int code = static_cast<int>(fromLinear.Evaluate(static_cast<float>(index) / 65535.0f) * 65535.0f);
  return pOutput.GetBitDepth() == 8 ? code / 256 : code;
}

void ExpectPixel(const sJob& pJob, const sCurves& pCurves, int pX, int pY) {
  const cColorSpace_ProPhotoRGB working;
  const cColorSpace& space = *pJob.fInput->GetColorSpace();
  const float white = pJob.fInput->GetBitDepth() == 8 ? 255.0f : 65535.0f;
  cVector3 c;
  for (int i = 0; i < 3; ++i) {
    c[i] = space.GetToLinear()->Evaluate(static_cast<float>(Sample(*pJob.fInput, pX, pY, 2 - i)) / white);
  }
  c = working.GetXYZToRGB() * space.GetRGBToXYZ() * c;
  for (int i = 0; i < 3; ++i) c[i] = c[i] > 0.0f ? c[i] : 0.0f;
  const float min = std::min({c[0], c[1], c[2]});
  float max = std::max({c[0], c[1], c[2]});
  const int hue = Reference::HueCode(c[0], c[1], c[2], min, max);
  if (max == 0.0f) max = std::numeric_limits<float>::min();
  const float k = (pCurves.fHL->GetFloatTable()[hue] - 0.5f) * (1.0f - min / max) * 2.0f + 1.0f;
  const float low = min * k;
  const float span = max * k - low;
  const Reference::sHexcone full = HueColor(hue, pCurves);
  for (int i = 0; i < 3; ++i) {
    const float v = full.fRGB[i] * span + low;
    c[i] = v > 0.0f ? std::min(v, 1.0f) : 0.0f;
  }
  c = pJob.fOutput->GetColorSpace()->GetXYZToRGB() * working.GetRGBToXYZ() * c;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(Sample(*pJob.fOutput, pX, pY, 2 - i), Encoded(c[i], *pJob.fOutput)) << pX << ' ' << pY;
  }
}

TEST(cColorEqRenderer, ChecksItsArgumentsAndImages) {
  sJob job(8, 16, 10, 5, 0, 0);
  const tImage both = NewImage(8, 11, 6, 0), tall = NewImage(16, 10, 6, 0);
  const cHermiteSpline curve;
  cColorEqRenderer& renderer = *job.fRenderer;
  const auto fresh = std::make_unique<cColorEqRenderer>();
  const auto renderTo = [&](const tImage& pOutput) {
    renderer.SetOutput(pOutput.get());
    renderer.Render();
  };
  const std::string method = "void __cdecl TmEngine::cColorEqRenderer::";
  ExpectChecks(method + "SetInput(class TmEngine::cBitmapLDR *)",
               {TM_NULL("Argument pInput is null.", renderer.SetInput(nullptr))});
  ExpectChecks(method + "SetOutput(class TmEngine::cBitmapLDR *)",
               {TM_NULL("Argument pOutput is null.", renderer.SetOutput(nullptr))});
  ExpectChecks(method +
                   "SetHueCurves(const class TmEngine::cHermiteSpline *,const class TmEngine::cHermiteSpline "
                   "*,const class TmEngine::cHermiteSpline *)",
               {TM_NULL("Argument pHHCurve is null.", renderer.SetHueCurves(nullptr, nullptr, nullptr)),
                TM_NULL("Argument pHSCurve is null.", renderer.SetHueCurves(&curve, nullptr, nullptr)),
                TM_NULL("Argument pHLCurve is null.", renderer.SetHueCurves(&curve, &curve, nullptr))});
  job.Rendered();
  ExpectPixel(job, sCurves(), 3, 2);  // a refused set of curves changes nothing
  ExpectChecks(method + "Render(bool *,bool *)",
               {TM_STATE("Input image is not set.", fresh->Render()),
                TM_STATE("Output image is not set.", fresh->SetInput(both.get()), fresh->Render()),
                TM_STATE("The input and output images do not have the same width.", renderTo(both)),
                TM_STATE("The input and output images do not have the same height.", renderTo(tall))});
  ExpectThrow<cInvalidOperationException>([&] { renderer.Render(); },
                                          "The input and output images do not have the same height.",
                                          ".\\cColorEqRenderer.cpp");
}

TEST(cColorEqRenderer, AgreesWithThePlainFormulasAndLeavesPaddingAlone) {
  const sCurves curves = StrongCurves();
  for (int i = 0; i < 36; ++i) {
    const int width = i / 4 + 1;
    sJob job(i % 2 == 0 ? 8 : 16, i % 4 < 2 ? 8 : 16, width, 7, width % 3, width / 3 % 3);
    job.SetCurves(curves);
    tBytes bytes = job.Rendered();
    for (int y = 0; y < 7; ++y) {
      for (int x = 0; x < width; ++x) ExpectPixel(job, curves, x, y);
      std::fill_n(bytes.begin() + y * job.fOutput->GetStride(), 3 * width * job.fOutput->GetBitDepth() / 8,
                  kUntouched);
    }
    EXPECT_EQ(bytes, tBytes(bytes.size(), kUntouched));
    ASSERT_FALSE(HasFailure()) << "case " << i;
  }
}

TEST(cColorEqRenderer, TakesColorsBeyondTheWorkingSpaceAndWhatIsNoNumber) {
  const sCurves curves = StrongCurves();
  for (const float gamma : {2.2f, -1.0f, 1e30f, 0.01f, kNaN}) {
    cColorSpace_GenericRGB space({0.75f, 0.25f}, {0.0f, 1.0f}, {0.1f, -0.1f}, {0.3127f, 0.329f}, gamma);
    sJob job(16, 16, 6, 4, 0, 0);
    job.fInput->SetColorSpace(&space);
    job.SetCurves(curves);
    job.fRenderer->Render();
    for (int i = 0; i < 24; ++i) ExpectPixel(job, curves, i % 6, i / 6);
  }
}

TEST(cColorEqRenderer, KeepsBlackAsAColorWithAPositiveMaximum) {
  const tImage image = NewImage(8, 1, 1, eColorSpaceID_sRGB);
  std::fill_n(image->GetBitmapData(), 3, static_cast<unsigned char>(0));
  cBitmapU16T records(1, 1, kHueChannels);
  FillHueRecords({}, *image, cColorSpace_ProPhotoRGB().GetXYZToRGB(), records);
  const sColorRun run = ColorRun(records, 0, 0);
  EXPECT_EQ(*run.fHue, 0);
  EXPECT_EQ(*run.fMin, 0.0f);
  EXPECT_EQ(*run.fMax, 1.1754944e-38f);
}

/// An input that reports when its pixels are read.
class cWatchedImage : public cBitmapBGR16 {
 public:
  cWatchedImage() : cBitmapBGR16(9, 6, eColorSpaceID_sRGB) { FillWithColors(*this); }
  unsigned char* GetBitmapData() override {
    fOnRead();
    return cBitmapBGR16::GetBitmapData();
  }
  std::function<void()> fOnRead = [] {};
};

struct sWatchedJob : sJob {
  sWatchedJob() : sJob(16, 16, 9, 6, 0, 0) {
    fUntouched = Bytes(*fOutput);
    fExpected = Rendered();
    fWatched.fOnRead = [this] { fReads = true; };
    Wipe(*fOutput);
    fRenderer->SetInput(&fWatched);
  }
  /// Which stages run: p reads the input, r writes the output.
  std::string Stages() {
    fReads = false;
    Wipe(*fOutput);
    const bool writes = Rendered() != fUntouched;
    return std::string(fReads ? "p" : "") + (writes ? "r" : "");
  }

  cWatchedImage fWatched;
  bool fReads = false;
  tBytes fExpected, fUntouched;
};

TEST(cColorEqRenderer, RunsOnlyStaleStages) {
  sWatchedJob job;
  EXPECT_EQ(job.Stages(), "pr");
  EXPECT_EQ(Bytes(*job.fOutput), job.fExpected);
  EXPECT_EQ(job.Stages(), "");
  job.SetCurves(sCurves());
  EXPECT_EQ(job.Stages(), "") << "the curves that it holds at first";
  for (tCurve sCurves::*member : {&sCurves::fHH, &sCurves::fHS, &sCurves::fHL}) {
    sCurves curves;
    curves.*member = Curve({0.6f, 0.7f});
    job.SetCurves(curves);
    EXPECT_EQ(job.Stages(), "r");
    EXPECT_NE(Bytes(*job.fOutput), job.fExpected);
  }
  job.SetCurves(sCurves());
  EXPECT_EQ(job.Stages(), "r");

  // The encoding follows the output's colour space when either image is set.
  sJob adobe(16, 16, 9, 6, 0, 1);
  job.fOutput->SetColorSpace(eColorSpaceID_AdobeRGB98);
  job.fRenderer->SetInput(&job.fWatched);
  EXPECT_EQ(job.Stages(), "pr");
  EXPECT_EQ(Bytes(*job.fOutput), adobe.Rendered());
  job.fOutput->SetColorSpace(eColorSpaceID_sRGB);
  job.fRenderer->SetOutput(job.fOutput.get());
  EXPECT_EQ(job.Stages(), "r");
  EXPECT_EQ(Bytes(*job.fOutput), job.fExpected);
}

TEST(cColorEqRenderer, StopsWhenCancelledAndRunsInFullAfterwards) {
  sWatchedJob job;
  bool cancel = true, aborted = false;
  const auto render = [&](bool pCancel) {
    cancel = pCancel, aborted = job.fReads = false;
    Wipe(*job.fOutput);
    job.fRenderer->Render(&cancel, &aborted);
    EXPECT_TRUE(aborted);
    EXPECT_EQ(Bytes(*job.fOutput), job.fUntouched);
  };
  render(true);  // before the preparation
  EXPECT_FALSE(job.fReads);
  job.fWatched.fOnRead = [&] { cancel = job.fReads = true; };
  render(false);  // within it
  EXPECT_TRUE(job.fReads);
  EXPECT_EQ(job.Stages(), "pr");
  EXPECT_EQ(Bytes(*job.fOutput), job.fExpected);
  job.fRenderer->SetOutput(job.fOutput.get());
  render(true);  // before the rows
  cancel = false;
  job.fRenderer->Render(&cancel, &aborted);  // the flag of the last run is still set
  EXPECT_EQ(Bytes(*job.fOutput), job.fExpected);
  EXPECT_EQ(job.Stages(), "r");
  EXPECT_EQ(job.Stages(), "");
}

TEST(cColorEqRenderer, RendersAfterAFailureAndIntoItsInput) {
  sWatchedJob job;
  cColorSpace_GenericRGB empty;
  const tImage blank = NewImage(8, 9, 6, 0);
  blank->SetColorSpace(&empty);
  const std::string text = "Argument pTransfer cannot be null.";
  ExpectChecks("", {TM_NULL(text, job.fRenderer->SetInput(blank.get()), job.fRenderer->Render()),
                    TM_NULL(text, job.fRenderer->SetInput(job.fInput.get()),
                            job.fRenderer->SetOutput(blank.get()), job.fRenderer->Render())});
  job.fRenderer->SetOutput(job.fInput.get());
  job.fRenderer->Render();
  EXPECT_EQ(Bytes(*job.fInput), job.fExpected);
}

}  // namespace
}  // namespace TmEngine
