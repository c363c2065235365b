// Kernels on one run of pixels. Every set must leave the same bytes as the set of one lane.
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

#include "bench/Suites.h"
#include "engine/image/PixelRows.h"
#include "engine/kernels/Kernels.h"
#include "engine/math/Quantise.h"

namespace Bench {
namespace {

using TmEngine::kRunLength;
using TmEngine::sKernels;

// Rows with a sum of 1 and no negative entry: a colour that is transformed over and over stays a colour.
constexpr float kMatrix[9] = {0.7f, 0.2f, 0.1f, 0.25f, 0.7f, 0.05f, 0.1f, 0.1f, 0.8f};

/// Small whole numbers that look random.
unsigned Scatter(unsigned pIndex) {
  return (pIndex * 2654435761u) >> 8;
}

float ScatterUnit(unsigned pIndex) {
  return static_cast<float>(Scatter(pIndex) % 65536u) / 65535.0f;
}

/// What kernels read and write, filled alike for every set.
struct sRun {
  float fX[kRunLength], fY[kRunLength], fZ[kRunLength];  // above 0
  float fMin[kRunLength], fMax[kRunLength], fLuminance[kRunLength];
  float fLogs[kRunLength], fFractions[kRunLength], fTo[kRunLength];
  double fDoubles[kRunLength], fPowers[kRunLength];
  int fR[kRunLength], fG[kRunLength], fB[kRunLength];
  int fCells[kRunLength];
  unsigned short fHue[kRunLength];
  float fHues[3 * TmEngine::kTableSize];
  float fCurve[TmEngine::kTableSize];
  float fGrid[16 * 8];  // 16 levels of 2 x 2 cells of 2 floats
  TmEngine::sRange fRange;

  void Fill();
  TmEngine::sXYZRun Colors() const { return {fX, fY, fZ}; }
  TmEngine::sColorRun Records() { return {fMin, fMax, fHue, fLuminance}; }
};

void sRun::Fill() {
  std::memset(static_cast<void*>(this), 0, sizeof *this);
  for (unsigned i = 0; i < kRunLength; ++i) {
    fX[i] = 0.01f + ScatterUnit(3 * i);
    fY[i] = 0.01f + ScatterUnit(3 * i + 1);
    fZ[i] = 0.01f + ScatterUnit(3 * i + 2);
    fMin[i] = 0.4f * ScatterUnit(i + 7000);
    fMax[i] = 0.5f + ScatterUnit(i + 8000);
    fLuminance[i] = ScatterUnit(i + 9000);
    fLogs[i] = 3.0f * ScatterUnit(i / 16);  // neighbours are alike, as in pictures
    fDoubles[i] = 0.01 + static_cast<double>(fX[i]);
    fFractions[i] = ScatterUnit(i + 10000);
    fR[i] = static_cast<int>(Scatter(i + 11000) % 65536u);
    fG[i] = static_cast<int>(Scatter(i + 12000) % 65536u);
    fB[i] = static_cast<int>(Scatter(i + 13000) % 65536u);
    fCells[i] = static_cast<int>(Scatter(i / 16 + 14000) % 7u);
    fHue[i] = static_cast<unsigned short>(Scatter(i + 15000));
  }
  for (unsigned i = 0; i < std::size(fHues); ++i) fHues[i] = ScatterUnit(i + 16000);
  for (unsigned i = 0; i < std::size(fCurve); ++i) fCurve[i] = static_cast<float>(i) / 65535.0f;
  for (unsigned i = 0; i < std::size(fGrid); ++i) fGrid[i] = ScatterUnit(i + 17000);
  fRange = {1e30f, -1e30f};
}

struct sCase {
  const char* fName;
  int fBytes;  // read and written, per pixel
  void (*fCall)(const sKernels&, sRun&);
};

constexpr sCase kCases[] = {
    {"Log10Row", 8, [](const sKernels& k, sRun& r) { k.fLog10Row(r.fX, r.fTo, kRunLength); }},
    {"PowRow", 16, [](const sKernels& k, sRun& r) { k.fPowRow(r.fDoubles, 2.2, r.fPowers, kRunLength); }},
    {"BasePowRow", 16,
     [](const sKernels& k, sRun& r) { k.fBasePowRow(10.0, r.fDoubles, r.fPowers, kRunLength); }},
    {"Widen", 4, [](const sKernels& k, sRun& r) { k.fWiden(r.fX, kRunLength, r.fRange); }},
    {"Transform", 24,
     [](const sKernels& k, sRun& r) { k.fTransform(kMatrix, r.fX, r.fY, r.fZ, kRunLength); }},
    {"Prepare", 30,
     [](const sKernels& k, sRun& r) {
       k.fPrepare(r.Colors(), kMatrix, 1e-30f, r.Records(), r.fTo, kRunLength);
     }},
    {"NearestCells", 8,
     [](const sKernels& k, sRun& r) { k.fNearestCells(r.fLogs, 0.0f, 0.32f, 15, r.fCells, kRunLength); }},
    {"Positions", 12,
     [](const sKernels& k, sRun& r) { k.fPositions(r.fLogs, 0.0f, 0.32f, 15, r.fCells, r.fTo, kRunLength); }},
    {"Interpolate", 16,
     [](const sKernels& k, sRun& r) {
       k.fInterpolate({r.fGrid, 2, 4, 8, 0.3f}, r.fCells, r.fFractions, r.fMin, -1.0f, r.fTo, kRunLength);
     }},
    {"Subtract", 12, [](const sKernels& k, sRun& r) { k.fSubtract(r.fX, r.fY, r.fTo, kRunLength); }},
    {"Quantise", 8, [](const sKernels& k, sRun& r) { k.fQuantise(r.fX, 0.0f, 1.1f, r.fCells, kRunLength); }},
    {"Bins", 8, [](const sKernels& k, sRun& r) { k.fBins(r.fX, 0.0f, 60000.0f, r.fCells, kRunLength); }},
    {"ColorIndices", 26,
     [](const sKernels& k, sRun& r) {
       k.fColorIndices(r.Records(), r.fHues, {1.0f, 0.9f, 0.01f}, r.fR, r.fG, r.fB, kRunLength);
     }},
    {"TransformIndices", 24,
     [](const sKernels& k, sRun& r) {
       k.fTransformIndices(kMatrix, r.fCurve, r.fR, r.fG, r.fB, kRunLength);
     }},
    {"HueRecords", 22,
     [](const sKernels& k, sRun& r) { k.fHueRecords(kMatrix, r.Colors(), r.Records(), kRunLength); }},
    {"Equalise", 22,
     [](const sKernels& k, sRun& r) {
       k.fEqualise({r.fHues, r.fCurve, kMatrix}, r.Records(), r.fR, r.fG, r.fB, kRunLength);
     }},
};

void Check(const sCase& pCase, const sKernels& pKernels) {
  const auto run = std::make_unique<sRun>();
  const auto expected = std::make_unique<sRun>();
  run->Fill();
  expected->Fill();
  pCase.fCall(pKernels, *run);
  pCase.fCall(*TmEngine::KernelsOf(1), *expected);
  if (std::memcmp(static_cast<void*>(run.get()), static_cast<void*>(expected.get()), sizeof(sRun)) == 0)
    return;
  throw std::runtime_error(std::string(pCase.fName) + " of " + std::to_string(pKernels.fLanes) +
                           " lanes differs from one lane");
}

void Time(benchmark::State& pState, const sCase* pCase, const sKernels* pKernels) {
  const auto run = std::make_unique<sRun>();
  run->Fill();
  while (pState.KeepRunning()) {
    pCase->fCall(*pKernels, *run);
    benchmark::ClobberMemory();
  }
  ReportPixels(pState, kRunLength, pCase->fBytes);
}

}  // namespace

void RegisterKernels() {
  for (const sCase& entry : kCases) {
    for (const int lanes : {1, 4, 8, 16}) {
      const sKernels* const kernels = TmEngine::KernelsOf(lanes);
      if (kernels == nullptr) continue;
      Check(entry, *kernels);
      const std::string name = std::string("kernel/") + entry.fName + "/" + std::to_string(lanes);
      benchmark::RegisterBenchmark(name.c_str(), Time, &entry, kernels);
    }
  }
}

}  // namespace Bench
