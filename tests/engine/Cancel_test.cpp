#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "engine/cColorEqRenderer.h"
#include "engine/cTmRenderer.h"
#include "engine/color/cTransferLUT.h"
#include "engine/curve/cHermiteSpline.h"
#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapXYZ32.h"
#include "engine/stages/BilateralGrid.h"
#include "engine/stages/HueTable.h"
#include "tests/AllocationHook.h"
#include "tests/Pictures.h"
#include "tests/StderrCapture.h"

namespace TmEngine {
namespace {

// Rows of several memory pages, so that pages distinguish rows.
constexpr int kWidth = 4096;
constexpr int kHeight = 24;
constexpr std::size_t kPlaneBytes = std::size_t{4} * kWidth * kHeight;
constexpr std::size_t kRecordBytes = std::size_t{14} * kWidth * kHeight;
constexpr std::size_t kOutputBytes = std::size_t{6} * kWidth * kHeight;

/// Memory that must not be touched. The first touch waits until another thread has set the cancel flag;
/// then, as at every later touch of another page, the work goes on and the page is noted. So a stage is
/// cancelled at a known row, whatever the threads' timing.
class cTripwire {
 public:
  cTripwire() {
    fPage = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    gWire = this;
    struct sigaction action = {};
    action.sa_sigaction = &OnTouch;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSEGV, &action, &fFormer);
    fOther = std::thread([this] {
      while (!fTouched && !fOver) sched_yield();
      if (fTouched) __atomic_store_n(&fCancel, true, __ATOMIC_RELAXED);
      fIsSet = true;
    });
  }
  cTripwire(const cTripwire&) = delete;
  cTripwire& operator=(const cTripwire&) = delete;
  ~cTripwire() {
    Release();
    fOver = true;
    fOther.join();
    sigaction(SIGSEGV, &fFormer, nullptr);
    gWire = nullptr;
  }

  /// The whole pages of the second half of a block.
  void Stretch(void* pBlock, std::size_t pBytes) {
    char* const block = static_cast<char*>(pBlock);
    char* const half = block + pBytes / 2;
    fFirst = half + (fPage - reinterpret_cast<std::uintptr_t>(half) % fPage) % fPage;
    fBytes = static_cast<std::size_t>(block + pBytes - fFirst) / fPage * fPage;
    mprotect(fFirst, fBytes, PROT_NONE);
  }
  void Release() {
    if (fBytes > 0) mprotect(fFirst, fBytes, PROT_READ | PROT_WRITE);
    fBytes = 0;
  }
  bool* Cancel() { return &fCancel; }
  bool IsTouched() const { return fTouched; }
  /// From the start of the first page that was touched to the end of the last.
  std::size_t TouchedBytes() const { return fLastTouch + fPage - fFirstTouch; }
  std::size_t PageBytes() const { return fPage; }

 private:
  static void OnTouch(int, siginfo_t* pInfo, void*) {
    // Below the first page, the difference wraps and lies beyond the last.
    const std::uintptr_t at =
        reinterpret_cast<std::uintptr_t>(pInfo->si_addr) - reinterpret_cast<std::uintptr_t>(gWire->fFirst);
    if (at >= gWire->fBytes) {
      std::signal(SIGSEGV, SIG_DFL);  // a fault of another kind
      return;
    }
    gWire->Touch(at / gWire->fPage * gWire->fPage);
  }
  void Touch(std::size_t pPage) {
    mprotect(fFirst + pPage, fPage, PROT_READ | PROT_WRITE);
    if (!fTouched) fFirstTouch = fLastTouch = pPage;
    fFirstTouch = std::min(fFirstTouch, pPage);
    fLastTouch = std::max(fLastTouch, pPage);
    fTouched = true;
    while (!fIsSet) sched_yield();
  }

  static inline cTripwire* gWire = nullptr;
  struct sigaction fFormer = {};
  std::size_t fPage = 0;
  char* fFirst = nullptr;
  std::size_t fBytes = 0;
  std::size_t fFirstTouch = 0, fLastTouch = 0;  // offsets from fFirst
  std::atomic<bool> fTouched = false, fIsSet = false, fOver = false;
  bool fCancel = false;
  std::thread fOther;
};

enum eBlock { kNone, kInput, kLogLuminance, kBase, kRecords, kOutput, kTaken, kToneTables, kBlocks };

/// Which block the wire is stretched over, and when: at the pCount-th block of pBytes (0: of any size) that a
/// render takes, or before the render.
struct sWire {
  eBlock fBlock = kNone;
  int fCount = 0;
  std::size_t fBytes = 0;
};

/// Knows the renderer's blocks, and stretches the wire at its time.
class cWatch : public cAllocationHook {
 public:
  bool Allows(std::size_t) override { return true; }
  void Taken(void* pBlock, std::size_t pBytes) override {
    const sBlock block = {pBlock, pBytes};
    fBlocks[kTaken] = block;
    if (pBytes == kRecordBytes) {  // the two planes follow
      fBlocks[kRecords] = block;
      fNextPlane = kLogLuminance;
    }
    if (pBytes == kPlaneBytes && fNextPlane <= kBase) fBlocks[fNextPlane++] = block;
    if (pBytes == sizeof(cHueTable)) fHueTable = pBlock;
    const bool counts = fWire.fBytes == 0 || fWire.fBytes == pBytes;
    if (fTripwire != nullptr && counts && ++fCount == fWire.fCount) Stretch();
  }
  void Returned(void* pBlock) override {
    if (pBlock == fStretched) fTripwire->Release();
  }
  void* HueTable() const { return fHueTable; }
  void Know(eBlock pBlock, void* pStart, std::size_t pBytes) { fBlocks[pBlock] = {pStart, pBytes}; }
  void Begin(cTripwire& pTripwire, const sWire& pWire) {
    fTripwire = &pTripwire;
    fWire = pWire;
    fCount = 0;
    if (pWire.fCount == 0) Stretch();
  }
  void End() {
    fTripwire->Release();
    fTripwire = nullptr;
    fStretched = nullptr;
  }

 private:
  struct sBlock {
    void* fStart = nullptr;
    std::size_t fBytes = 0;
  };

  void Stretch() {
    if (fWire.fBlock == kNone) return;
    fStretched = fBlocks[fWire.fBlock].fStart;
    fTripwire->Stretch(fStretched, fBlocks[fWire.fBlock].fBytes);
  }

  sBlock fBlocks[kBlocks];
  void* fHueTable = nullptr;
  int fNextPlane = kBlocks;
  cTripwire* fTripwire = nullptr;
  sWire fWire;
  int fCount = 0;
  void* fStretched = nullptr;
};

struct sCase {
  const char* fName;
  void (cTmRenderer::*fInvalidate)();
  const char* fStages;  // of the rerun: preparation, phase 1, phase 2
  sWire fWire;          // none: the flag is set before
  std::size_t fRowBytes = 0;
};
std::ostream& operator<<(std::ostream& pStream, const sCase& pCase) {
  return pStream << pCase.fName;
}

class CancelRenderer : public testing::Test {
 protected:
  CancelRenderer() : fInput(kWidth, kHeight), fOutput(kWidth, kHeight, eColorSpaceID_sRGB) {
    cRandom random(5);
    float* samples = fInput.GetBitmapData();
    for (int i = 0; i < 3 * kWidth * kHeight; ++i) samples[i] = std::exp2(12.0f * random.Unit() - 9.0f);
    fRenderer->SetInput(&fInput);
    fRenderer->SetOutput(&fOutput);
    fRenderer->SetToneParameters(44.0f, 0.5f, true, 20.0f, true, 0.0f, 100.0f, 60.0f, 40.0f, true, false,
                                 false, 1.0f, 1.0f);
  }
  /// Calls pBegin and renders; returns which stages wrote their last line.
  std::string Render(
      bool* pCancel, bool* pAborted, const std::function<void()>& pBegin = [] {}) {
    cStderrCapture capture;
    pBegin();
    fRenderer->Render(pCancel, pAborted);
    const std::string log = capture.Text();
    std::string stages;
    for (const char* line : {"pPrepare for Rendering", "1End ToneMappingPhase1", "2  ==> Linear Black"}) {
      if (log.find(line + 1) != std::string::npos) stages.push_back(line[0]);
    }
    return stages;
  }
  std::vector<unsigned char> Pixels() {
    const unsigned char* data = fOutput.GetBitmapData();
    return {data, data + std::ptrdiff_t{fOutput.GetStride()} * kHeight};
  }
  void ClearOutput() {
    std::fill_n(fOutput.GetBitmapData(), std::ptrdiff_t{fOutput.GetStride()} * kHeight,
                static_cast<unsigned char>(0xA5));
  }

  cBitmapXYZ32 fInput;
  cBitmapBGR16 fOutput;
  std::unique_ptr<cTmRenderer> fRenderer = std::make_unique<cTmRenderer>();
};

class Cancel : public CancelRenderer, public testing::WithParamInterface<sCase> {};

TEST_P(Cancel, StopsWithinARowAndRunsInFullAfterwards) {
  const sCase& test = GetParam();
  const bool isInFinal = test.fWire.fBlock == kOutput;
  cTripwire tripwire;
  cWatch watch;
  watch.Know(kInput, fInput.GetBitmapData(), 3 * kPlaneBytes);
  watch.Know(kOutput, fOutput.GetBitmapData(), kOutputBytes);
  watch.Know(kToneTables, const_cast<sToneTables*>(&fRenderer->GetToneTables()), sizeof(sToneTables));
  bool cancel = false, aborted = false;
  ASSERT_EQ(Render(&cancel, &aborted), "p12");
  const std::vector<unsigned char> expected = Pixels();

  ClearOutput();
  (fRenderer.get()->*test.fInvalidate)();
  if (test.fWire.fBlock == kNone) *tripwire.Cancel() = true;
  const std::string finished =
      Render(tripwire.Cancel(), &aborted, [&] { watch.Begin(tripwire, test.fWire); });
  watch.End();
  EXPECT_TRUE(aborted);
  EXPECT_EQ(finished, "");
  EXPECT_EQ(tripwire.IsTouched(), test.fWire.fBlock != kNone);
  if (tripwire.IsTouched()) {
    EXPECT_LE(tripwire.TouchedBytes(), test.fRowBytes + 2 * tripwire.PageBytes());
  }
  // Whole rows of the picture, then rows as they were.
  const std::vector<unsigned char> partly = Pixels();
  const auto rows = std::mismatch(partly.begin(), partly.end(), expected.begin()).first - partly.begin();
  EXPECT_EQ(rows % fOutput.GetStride(), 0);
  EXPECT_EQ(rows / fOutput.GetStride(), isInFinal ? kHeight / 2 + 1 : 0);
  EXPECT_TRUE(std::all_of(partly.begin() + rows, partly.end(), [](int pByte) { return pByte == 0xA5; }));

  aborted = false;
  EXPECT_EQ(Render(&cancel, &aborted), test.fStages);
  EXPECT_FALSE(aborted);
  EXPECT_EQ(Pixels(), expected);
  ClearOutput();
  EXPECT_EQ(Render(&cancel, &aborted), "");
  EXPECT_EQ(Pixels()[0], 0xA5);  // nothing was left to do
}

using tRenderer = cTmRenderer;
INSTANTIATE_TEST_SUITE_P(
    AllStages, Cancel,
    testing::Values(
        sCase{"before_preparation", &tRenderer::InvalidateAll, "p12", {}},
        sCase{"in_color_records", &tRenderer::InvalidateAll, "p12", {kInput}, 12 * kWidth},
        sCase{"in_log_luminance",
              &tRenderer::InvalidateAll,
              "p12",
              {kLogLuminance, 1, kPlaneBytes},
              4 * kWidth},
        sCase{"before_phase_1", &tRenderer::InvalidatePhase1, "12", {}},
        sCase{"in_splat", &tRenderer::InvalidatePhase1, "12", {kLogLuminance}, 4 * kWidth},
        sCase{"in_blur", &tRenderer::InvalidatePhase1, "12", {kTaken, 2}, 0},
        sCase{"in_slice", &tRenderer::InvalidatePhase1, "12", {kBase}, 4 * kWidth},
        sCase{"in_smoothing", &tRenderer::InvalidatePhase1, "12", {kBase, 1, kPlaneBytes}, 4 * kWidth},
        sCase{
            "in_statistics", &tRenderer::InvalidatePhase1, "12", {kLogLuminance, 1, kPlaneBytes}, 4 * kWidth},
        sCase{"before_phase_2", &tRenderer::InvalidatePhase2, "2", {}},
        sCase{"in_tone_tables", &tRenderer::InvalidatePhase2, "2", {kToneTables}, 4 * 1024},
        sCase{"in_tone_mapping", &tRenderer::InvalidatePhase2, "2", {kBase}, 4 * kWidth},
        sCase{"in_histogram", &tRenderer::InvalidatePhase2, "2", {kRecords, 1, 4 * 65536}, 14 * kWidth},
        sCase{"before_final_rendering", &tRenderer::InvalidateFinalRendering, "", {}},
        sCase{"in_output_encoding",
              &tRenderer::InvalidateOutputEncoding,
              "",
              {kTaken, 1, sizeof(cTransferLUT_F32I16)},
              2 * 1024},
        sCase{"in_final_rendering", &tRenderer::InvalidateFinalRendering, "", {kOutput}, 6 * kWidth}),
    testing::PrintToStringParamName());

// A table that was stopped half-way is none, whatever is asked for next.
TEST_F(CancelRenderer, BuildsAToneCurveAnewThatWasStopped) {
  bool cancel = false, aborted = false;
  const auto setContrast = [this](float pContrast) {
    fRenderer->SetToneParameters(44.0f, 0.5f, true, pContrast, true, 0.0f, 100.0f, 60.0f, 40.0f, true, false,
                                 false, 1.0f, 1.0f);
  };
  ASSERT_EQ(Render(&cancel, &aborted), "p12");
  const std::vector<unsigned char> expected = Pixels();
  setContrast(80.0f);
  {
    cTripwire tripwire;
    tripwire.Stretch(const_cast<float*>(fRenderer->GetToneCurve()), 4 * kTableSize);
    EXPECT_EQ(Render(tripwire.Cancel(), &aborted), "p12");
    EXPECT_TRUE(aborted);
    EXPECT_LE(tripwire.TouchedBytes(), 4 * 1024 + 2 * tripwire.PageBytes());
  }
  EXPECT_EQ(Pixels(), expected);
  setContrast(20.0f);
  ClearOutput();
  aborted = false;
  Render(&cancel, &aborted);
  EXPECT_EQ(Pixels(), expected);
}

TEST_F(CancelRenderer, BuildsAHueTableAnewThatWasStopped) {
  cWatch watch;
  bool cancel = false, aborted = false;
  const auto setSaturation = [this](float pSaturation) {
    const sControlPoint points[] = {{{0.0f, pSaturation}, {}, {}, 0}, {{1.0f, pSaturation}, {}, {}, 0}};
    cHermiteSpline neutral, curve;
    curve.SetControlPoints(eSplineInterpolationMode_Flat, 2, points);
    fRenderer->SetHueCurves(&neutral, &curve, &neutral);
  };
  setSaturation(0.75f);
  Render(&cancel, &aborted);
  const std::vector<unsigned char> expected = Pixels();
  setSaturation(0.25f);
  Render(&cancel, &aborted);
  const std::vector<unsigned char> before = Pixels();
  setSaturation(0.75f);
  {
    cTripwire tripwire;
    tripwire.Stretch(watch.HueTable(), sizeof(cHueTable));
    Render(tripwire.Cancel(), &aborted);
    EXPECT_TRUE(tripwire.IsTouched() && aborted);
    EXPECT_LE(tripwire.TouchedBytes(), 12 * 1024 + 2 * tripwire.PageBytes());
  }
  EXPECT_EQ(Pixels(), before);
  aborted = false;
  Render(&cancel, &aborted);
  EXPECT_EQ(Pixels(), expected);
}

// A single row that is summed seven times.
TEST(CancelGrid, StopsInTheWrappedMargin) {
  constexpr int kLength = 1 << 16;
  const auto row = std::make_unique<float[]>(kLength);
  cBilateralGrid grid(kLength, 1, 1e9f, 0.3f, 0.0f, 1.0f);
  cTripwire tripwire;
  tripwire.Stretch(row.get(), sizeof(float) * kLength);
  EXPECT_FALSE(grid.Splat(tripwire.Cancel(), row.get(), true));
  EXPECT_TRUE(tripwire.IsTouched());
}

TEST(CancelTables, StopInTransfers) {
  cTransferGamma gamma(2.2f);
  const auto expectStop = [&](auto pBuild, std::size_t pBytes, std::size_t pEntry) {
    cTripwire tripwire;
    cWatch watch;
    watch.Begin(tripwire, {kTaken, 1, pBytes});
    EXPECT_EQ(pBuild(&gamma, tripwire.Cancel()), nullptr);
    watch.End();
    EXPECT_TRUE(tripwire.IsTouched());
    EXPECT_LE(tripwire.TouchedBytes(), 1024 * pEntry + 2 * tripwire.PageBytes());
  };
  expectStop(BuildTable<cTransferLUT_I16F32>, sizeof(cTransferLUT_I16F32), sizeof(float));
  expectStop(BuildTable<cTransferLUT_F32I8>, sizeof(cTransferLUT_F32I8), 1);
}

TEST(CancelEqualiser, StopsWithinARowAndRunsInFullAfterwards) {
  cBitmapBGR16 input(kWidth, kHeight, eColorSpaceID_sRGB), output(kWidth, kHeight, eColorSpaceID_sRGB);
  const auto bytes = [](cBitmapBGR16& pImage) {
    return std::vector<unsigned char>(pImage.GetBitmapData(), pImage.GetBitmapData() + kOutputBytes);
  };
  cRandom random(7);
  for (std::size_t i = 0; i < kOutputBytes; ++i)
    input.GetBitmapData()[i] = static_cast<unsigned char>(random.Next());
  cColorEqRenderer renderer;
  renderer.SetInput(&input);
  renderer.SetOutput(&output);
  renderer.Render();
  const std::vector<unsigned char> expected = bytes(output);
  for (cBitmapBGR16* wired : {&input, &output}) {
    std::fill_n(output.GetBitmapData(), kOutputBytes, static_cast<unsigned char>(0xA5));
    renderer.SetInput(&input);
    bool aborted = false;
    {
      cTripwire tripwire;
      tripwire.Stretch(wired->GetBitmapData(), kOutputBytes);
      renderer.Render(tripwire.Cancel(), &aborted);
      EXPECT_TRUE(tripwire.IsTouched());
      EXPECT_LE(tripwire.TouchedBytes(), 6 * kWidth + 2 * tripwire.PageBytes());
    }
    EXPECT_TRUE(aborted);
    EXPECT_EQ(output.GetBitmapData()[kOutputBytes - 1], 0xA5);
    renderer.Render();
    EXPECT_EQ(bytes(output), expected);
  }
}

}  // namespace
}  // namespace TmEngine
