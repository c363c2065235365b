#include "python/extension/ArrayFunctions.h"

#include <memory>
#include <mutex>
#include <string>

#include "engine/image/ImageRows.h"
#include "photo/EqualizePicture.h"
#include "photo/picture/OutputBitmap.h"
#include "photo/render/AutoSettings.h"
#include "python/extension/Arguments.h"
#include "python/extension/ArrayRenderer.h"
#include "python/extension/Differences.h"
#include "python/extension/LightSpaces.h"
#include "python/extension/WatchedWork.h"

namespace Python {
namespace {

namespace py = pybind11;

Photo::sSettings ToSettings(const py::dict& pSettings) {
  Photo::sSettings settings;
  Photo::Apply(ToChange(pSettings), settings);
  return settings;
}

/// Integers have their light in the colour space of the result.
void CheckSource(const sPixelArray& pPixels, const std::string& pSource) {
  GetLight(pSource);
  if (pPixels.IsOfFloats() || pSource == "linear-srgb") return;
  throw py::value_error("source is for samples of floats; those of integers are in color_space");
}

/// Keeps the array while its pixels are looked at. Threads that share one take turns.
class cRenderer {
 public:
  cRenderer(py::array pImage, const std::string& pSource, const std::string& pColorSpace)
      : fImage(std::move(pImage)),
        fPixels(ViewPixels(fImage, "image")),
        fRenderer((CheckSource(fPixels, pSource), fPixels), pSource, GetColorSpace(pColorSpace)) {}

  py::array Render(const py::dict& pSettings, int pDepth, bool pDithers, const py::object& pOut,
                   const py::object& pProgress) {
    const Photo::sSettings settings = ToSettings(pSettings);
    py::array out = ChooseOutput(pOut, fPixels, pDepth);
    if (pDithers && pDepth != 8) throw py::value_error("dither is for results of depth 8");
    const sPixelArray to = ViewPixels(out, "out");
    RunWatched(pProgress, [&](Photo::cWatch& pWatch) {
      const std::lock_guard lock(fMutex);
      Photo::NameFile("image", [&] { fRenderer.Render(settings, pDithers, to, pWatch); });
    });
    return out;
  }

  py::dict GetSeconds() const {
    const TmEngine::sStageSeconds seconds = fRenderer.GetSeconds();
    py::dict dict;
    dict["preparation"] = seconds.fPreparation;
    dict["phase1"] = seconds.fPhase1;
    dict["phase2"] = seconds.fPhase2;
    dict["final_rendering"] = seconds.fFinalRendering;
    return dict;
  }

  py::dict GetRepairs() const { return ToDict(fRenderer.GetRepairs()); }

 private:
  py::array fImage;
  sPixelArray fPixels;
  std::mutex fMutex;
  cArrayRenderer fRenderer;
};

py::array Tonemap(const py::array& pImage, const py::dict& pSettings, const std::string& pColorSpace,
                  const std::string& pSource, int pDepth, bool pDithers, const py::object& pOut,
                  const py::object& pProgress) {
  return cRenderer(pImage, pSource, pColorSpace).Render(pSettings, pDepth, pDithers, pOut, pProgress);
}

py::dict AutoSettings(const py::array& pImage, const std::string& pSource, const std::string& pColorSpace) {
  const sPixelArray pixels = ViewPixels(pImage, "image");
  CheckSource(pixels, pSource);
  const TmEngine::eColorSpaceID space = GetColorSpace(pColorSpace);
  Photo::sSettings settings;
  RunWatched(py::none(), [&](Photo::cWatch& pWatch) {
    settings = Photo::SuggestSettings(SampleArray(pixels, pSource, space, pWatch));
  });
  Photo::sSettingsChange change = Photo::ChangeTo(settings);
  change.fWrap.reset();
  change.fRendering.reset();
  return ToDict(change);
}

/// Blue, green, red, as the engine's images have them.
Photo::sLdrPicture ToPicture(const sPixelArray& pPixels, TmEngine::eColorSpaceID pSpace) {
  Photo::sLdrPicture picture;
  picture.fBitmap = MakeOutputBitmap(pPixels.fWidth, pPixels.fHeight, 8 * pPixels.SampleBytes(), pSpace);
  sPixelArray turned = pPixels;
  turned.fPixels += 2 * pPixels.fSampleStep;
  turned.fSampleStep = -pPixels.fSampleStep;
  for (int y = 0; y < pPixels.fHeight; ++y) GatherRow(turned, y, TmEngine::PixelRow(*picture.fBitmap, y));
  return picture;
}

py::array Equalize(const py::array& pImage, const py::dict& pCurves, const std::string& pColorSpace,
                   const py::object& pOut) {
  const sPixelArray pixels = ViewPixels(pImage, "image");
  CheckIntegers(pixels, "image");
  const Photo::sHueCurveOptions curves = ToCurves(pCurves);
  const TmEngine::eColorSpaceID space = GetColorSpace(pColorSpace);
  const int depth = 8 * pixels.SampleBytes();
  py::array out = ChooseOutput(pOut, pixels, depth);
  const sPixelArray to = ViewPixels(out, "out");
  RunWatched(py::none(), [&](Photo::cWatch& pWatch) {
    Photo::sLdrPicture picture = ToPicture(pixels, space);
    Photo::cResultPixels result = Photo::EqualizePixels(picture, depth, curves, &pWatch);
    std::vector<std::uint16_t> alpha(static_cast<std::size_t>(pixels.fWidth));
    for (int y = 0; y < pixels.fHeight; ++y) {
      if (pixels.fChannels == 4) {
        GatherAlpha(pixels, y, alpha.data());
        ScatterAlpha(alpha.data(), to, y);
      }
      ScatterRow(result.GetRow(y), 0, to, y);
    }
  });
  return out;
}

py::dict CompareArrays(const py::array& pA, const py::array& pB) {
  const sPixelArray a = ViewPixels(pA, "a");
  const sPixelArray b = ViewPixels(pB, "b");
  CheckIntegers(a, "a");
  CheckIntegers(b, "b");
  return MeasureDifference([&] { return ToPicture(a, TmEngine::eColorSpaceID_sRGB); },
                           [&] { return ToPicture(b, TmEngine::eColorSpaceID_sRGB); }, &RunWatched);
}

}  // namespace

void AddArrayFunctions(py::module_& pModule) {
  pModule.def("tonemap", &Tonemap);
  pModule.def("auto_settings", &AutoSettings);
  pModule.def("equalize", &Equalize);
  pModule.def("compare_arrays", &CompareArrays);
  py::class_<cRenderer>(pModule, "Renderer")
      .def(py::init<py::array, const std::string&, const std::string&>())
      .def("render", &cRenderer::Render)
      .def("seconds", &cRenderer::GetSeconds)
      .def("repairs", &cRenderer::GetRepairs);
}

}  // namespace Python
