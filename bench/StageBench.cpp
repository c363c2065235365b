// The renderer's stages, each on what the one before it left, and the tables that a call builds whatever the
// size of its picture.
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Suites.h"
#include "engine/cTmRenderer.h"
#include "engine/color/cColorSpace.h"
#include "engine/curve/cContrastCurve.h"
#include "engine/image/cBitmapU16T.h"
#include "engine/stages/BilateralGrid.h"
#include "engine/stages/BlackWhitePoints.h"
#include "engine/stages/ColorRows.h"
#include "engine/stages/StageRun.h"
#include "engine/stages/ToneMapping.h"
#include "examples/scene/HostPixels.h"
#include "export/PixelExport.h"
#include "export/PixelImport.h"
#include "tests/reference/ReferenceToneMapper.h"

using namespace TmEngine;

namespace Bench {
namespace {

// The values of sliders at rest.
constexpr float kSigmaS = static_cast<float>(kWidth) / 1000.0f * 25.0f;
constexpr float kSigmaR = 0.32f;
constexpr double kGamma = 2.2;

constexpr tm_quorvane_image Layout(int pInputBits, int pOutputBits) {
  return {kWidth, kHeight, 3, pInputBits, pOutputBits, 0, 3 * kWidth, 0, {0, 0}};
}

using tBytes = std::vector<unsigned char>;

/// The scene as the host hands it over.
const tBytes& HostPicture(int pBits) {
  static const Scene::sHdrPicture scene = Scene::RenderScene({});
  static const tBytes pictures[] = {Scene::HostPixels(scene, kWidth, kHeight, 8),
                                    Scene::HostPixels(scene, kWidth, kHeight, 16),
                                    Scene::HostPixels(scene, kWidth, kHeight, 32)};
  return pictures[pBits == 8 ? 0 : pBits == 16 ? 1 : 2];
}

tBytes OutputFor(int pBits) {
  return tBytes(static_cast<std::size_t>(kPixels) * 3 * static_cast<std::size_t>(pBits / 8));
}

/// The whole call against the plain build: every stage has part in it.
void Check(int pInputBits, int pOutputBits) {
  const tm_quorvane_image image = Layout(pInputBits, pOutputBits);
  const void* const input = HostPicture(pInputBits).data();
  tBytes output = OutputFor(pOutputBits), expected = output;
  tm_quorvane_settings settings = {};
  {
    const cSilence silence;
    cpp_tm_quorvane(&image, nullptr, 0, &settings, input, output.data());
  }
  Reference::ToneMap(image, 0, settings, input, expected.data(), nullptr);
  if (output != expected) throw std::runtime_error("the call's picture differs from the plain build's");
}

/// The stages' intermediate results.
struct sStages {
  cColorSpace_sRGB fSpace;
  cMatrix33 fToWorking = cColorSpace_ProPhotoRGB().GetXYZToRGB();
  cBitmapU16T fRecords{kWidth, kHeight, kColorChannels};
  tPlane fLogs = AllocPlane(kWidth, kHeight);
  tPlane fBase = AllocPlane(kWidth, kHeight);
  sLuminanceRange fRange;
  sLayerStatistics fLayers;
  sToneTables fTables;
  sToneMappedRange fMapped;

  cHostSource Source(int pBits) const {
    return {Layout(pBits, 8), kGamma, fSpace.GetRGBToXYZ(), HostPicture(pBits).data()};
  }
  cBilateralGrid Grid() const { return {kWidth, kHeight, kSigmaS, kSigmaR, fRange.fLogMin, fRange.fLogMax}; }
  void Prepare(const cRowSource& pFrom) {
    PrepareColors({}, pFrom, fToWorking, fRecords, fLogs.get(), fRange);
  }
  void Slice(cBilateralGrid& pGrid) {
    for (int y = 0; y < kHeight; ++y) {
      const std::ptrdiff_t row = RowStart(y, kWidth);
      pGrid.SliceRow(y, fLogs.get() + row, fBase.get() + row);
    }
  }
  void MeasureLayers() {
    fLayers = {};
    for (int y = 0; y < kHeight; ++y) {
      const std::ptrdiff_t row = RowStart(y, kWidth);
      fLayers.AddRow(fLogs.get() + row, fBase.get() + row, kWidth);
    }
    fLayers.Finish(RowStart(kHeight, kWidth));
  }
  void BuildTables() { BuildToneTables(GlobalExponent(44.0f), 0.0f, fLayers, fTables); }
  void MapLuminance() { ToneMapLuminance({}, fLogs.get(), fBase.get(), fLayers, fTables, fRecords, fMapped); }
};

/// Ready for every stage.
sStages& Stages() {
  static const std::unique_ptr<sStages> stages = [] {
    auto made = std::make_unique<sStages>();
    made->Prepare(made->Source(16));
    cBilateralGrid grid = made->Grid();
    grid.Splat(nullptr, made->fLogs.get(), false);
    grid.Blur(nullptr);
    made->Slice(grid);
    made->MeasureLayers();
    made->BuildTables();
    made->MapLuminance();
    return made;
  }();
  return *stages;
}

/// pDo returns the seconds of one turn. pBytes: read and written, per pixel; 0 where that says little.
template <class tDo>
void Register(const std::string& pName, double pBytes, const tDo& pDo) {
  benchmark::RegisterBenchmark(pName.c_str(), [=](benchmark::State& pState) {
    while (pState.KeepRunning()) pState.SetIterationTime(pDo(Stages()));
    ReportPixels(pState, kPixels, pBytes);
  })->UseManualTime();
}

double TimeSplat(sStages& pStages) {
  cBilateralGrid grid = pStages.Grid();
  return Seconds([&] { grid.Splat(nullptr, pStages.fLogs.get(), false); });
}

double TimeBlur(sStages& pStages) {
  cBilateralGrid grid = pStages.Grid();
  grid.Splat(nullptr, pStages.fLogs.get(), false);
  return Seconds([&] { grid.Blur(nullptr); });
}

double TimeSlice(sStages& pStages) {
  cBilateralGrid grid = pStages.Grid();
  grid.Splat(nullptr, pStages.fLogs.get(), false);
  grid.Blur(nullptr);
  return Seconds([&] { pStages.Slice(grid); });
}

/// The final rendering alone: the renderer has run before.
class cFinalRendering {
 public:
  explicit cFinalRendering(int pBits)
      : fOutput(OutputFor(pBits)),
        fSource(Stages().Source(16)),
        fSink(Layout(16, pBits), eColorSpaceID_sRGB, fOutput.data()) {
    const cSilence silence;  // the sink's lines
    fRenderer->SetInputRows(fSource);
    fRenderer->SetOutputRows(fSink);
    fRenderer->Render();
  }
  double Time() {
    fRenderer->InvalidateFinalRendering();
    const cSilence silence;
    return Seconds([this] { fRenderer->Render(); });
  }

 private:
  tBytes fOutput;
  cHostSource fSource;
  cHostSink fSink;
  std::unique_ptr<cTmRenderer> fRenderer = std::make_unique<cTmRenderer>();
};

void RegisterPixelStages() {
  for (const int bits : {8, 16, 32}) {
    const double bytes = bits == 32 ? 4.0 : 3.0 * bits / 8.0;
    Register("stage/preparation_" + std::to_string(bits), bytes + 18.0, [bits](sStages& s) {
      const cHostSource source = s.Source(bits);
      return Seconds([&] { s.Prepare(source); });
    });
  }
  Register("stage/splat", 4.0, TimeSplat);
  Register("stage/blur", 0.0, TimeBlur);
  Register("stage/slice", 8.0, TimeSlice);
  Register("stage/layer_statistics", 8.0, [](sStages& s) { return Seconds([&] { s.MeasureLayers(); }); });
  Register("stage/tone_mapping", 12.0, [](sStages& s) { return Seconds([&] { s.MapLuminance(); }); });
  Register("stage/histogram", 4.0, [](sStages& s) {
    return Seconds([&] { const cLuminanceHistogram histogram(s.fRecords, s.fMapped, {}); });
  });
  for (const int bits : {8, 16}) {
    Register("stage/final_rendering_" + std::to_string(bits), 14.0 + 3.0 * bits / 8.0, [bits](sStages&) {
      static cFinalRendering renderings[] = {cFinalRendering(8), cFinalRendering(16)};
      return renderings[bits / 8 - 1].Time();
    });
  }
}

void RegisterTables() {
  Register("table/decoding_16", 0.0,
           [](sStages& s) { return Seconds([&] { const cHostSource source = s.Source(16); }); });
  Register("table/tone", 0.0, [](sStages& s) { return Seconds([&] { s.BuildTables(); }); });
  Register("table/curve", 0.0, [](sStages&) {
    cContrastCurve curve;
    return Seconds([&] {
      curve.InterpolateKeyFrames(0.7f);
      curve.Get16BitTable();
    });
  });
  Register("table/encoding", 0.0, [](sStages& s) {
    static const auto encoding = std::make_unique<cOutputEncoding>();
    encoding->Invalidate();
    return Seconds([&] { encoding->Table(s.fSpace); });
  });
}

}  // namespace

void RegisterStages() {
  Check(16, 16);
  Check(32, 8);
  Check(8, 8);
  RegisterPixelStages();
  RegisterTables();
}

}  // namespace Bench
