#include "python/extension/Arguments.h"

#include <algorithm>
#include <stdexcept>

#include "photo/Printable.h"
#include "photo/base/ParameterNames.h"

namespace Python {
namespace {

namespace py = pybind11;

float ReadSlider(const Photo::sSlider& pSlider, const py::handle& pValue) {
  const std::string keyword = GetKeyword(pSlider);
  const double number = PyFloat_AsDouble(pValue.ptr());
  if (number == -1.0 && PyErr_Occurred() != nullptr) throw py::error_already_set();
  const auto value = static_cast<float>(number);
  if (value >= pSlider.fLowest && value <= pSlider.fHighest) return value;
  throw py::value_error(keyword + " is " + std::string(py::str(pValue)) + "; it must be a number from " +
                        Photo::ToText(pSlider.fLowest) + " to " + Photo::ToText(pSlider.fHighest));
}

/// True is a wrap, False is none; or one of the names.
Photo::eWrap ReadWrap(const py::handle& pValue) {
  if (py::isinstance<py::bool_>(pValue)) {
    return pValue.cast<bool>() ? Photo::eWrap::kHorizontal : Photo::eWrap::kNone;
  }
  const std::string name(py::str(static_cast<py::object>(py::reinterpret_borrow<py::object>(pValue))));
  if (const auto wrap = Photo::FindWrap(name)) return *wrap;
  throw py::value_error("wrap is " + name + "; it must be True, False, 'none', 'horizontal' or 'auto'");
}

Photo::eRendering ReadRendering(const py::handle& pValue) {
  const std::string name(py::str(static_cast<py::object>(py::reinterpret_borrow<py::object>(pValue))));
  if (const auto rendering = Photo::FindRendering(name)) return *rendering;
  throw py::value_error("rendering is " + name + "; it must be 'color' or 'engine'");
}

py::dtype TypeOf(int pDepth) {
  if (pDepth == 8) return py::dtype::of<std::uint8_t>();
  if (pDepth == 16) return py::dtype::of<std::uint16_t>();
  throw py::value_error("depth is " + std::to_string(pDepth) + "; it must be 8 or 16");
}

Photo::tHuePoints ReadPoints(const py::dict& pCurves, const char* pName) {
  const auto text = pCurves[pName].cast<std::string>();
  try {
    return text.empty() ? Photo::tHuePoints() : Photo::ParseHuePoints(text);
  } catch (const std::invalid_argument& error) {
    throw py::value_error(std::string(pName) + ": " + error.what());
  }
}

}  // namespace

std::string GetKeyword(const Photo::sSlider& pSlider) {
  std::string keyword = pSlider.fName;
  std::replace(keyword.begin(), keyword.end(), '-', '_');
  return keyword;
}

Photo::sSettingsChange ToChange(const py::dict& pSettings) {
  Photo::sSettingsChange change;
  std::size_t found = 0;
  for (std::size_t i = 0; i < change.fSliders.size(); ++i) {
    const Photo::sSlider& slider = Photo::GetSliders()[i];
    const py::str keyword(GetKeyword(slider));
    if (!pSettings.contains(keyword)) continue;
    change.fSliders[i] = ReadSlider(slider, pSettings[keyword]);
    ++found;
  }
  if (pSettings.contains("wrap")) {
    change.fWrap = ReadWrap(pSettings["wrap"]);
    ++found;
  }
  if (pSettings.contains("rendering")) {
    change.fRendering = ReadRendering(pSettings["rendering"]);
    ++found;
  }
  if (found == pSettings.size()) return change;
  throw py::type_error("unknown settings among " + std::string(py::str(py::list(pSettings))));
}

py::dict ToDict(const Photo::sSettingsChange& pChange) {
  py::dict settings;
  for (std::size_t i = 0; i < pChange.fSliders.size(); ++i) {
    if (!pChange.fSliders[i]) continue;
    // the number that people typed: 0.1, not 0.10000000149
    settings[py::str(GetKeyword(Photo::GetSliders()[i]))] =
        py::float_(py::str(Photo::ToText(*pChange.fSliders[i])));
  }
  if (pChange.fWrap) settings["wrap"] = Photo::GetWrapName(*pChange.fWrap);
  if (pChange.fRendering) settings["rendering"] = Photo::GetRenderingName(*pChange.fRendering);
  return settings;
}

py::dict ToDict(const Photo::sRepairs& pRepairs) {
  py::dict repairs;
  repairs["nan"] = pRepairs.fNaN;
  repairs["infinite"] = pRepairs.fInfinite;
  repairs["outliers"] = pRepairs.fOutliers;
  repairs["negative"] = pRepairs.fNegative;
  return repairs;
}

std::vector<std::string> ToTexts(const std::vector<std::string>& pWarnings) {
  std::vector<std::string> texts;
  texts.reserve(pWarnings.size());
  for (const std::string& warning : pWarnings)
    texts.push_back(Photo::ToPrintable(Photo::NameParameters(warning)));
  return texts;
}

Photo::sHueCurveOptions ToCurves(const py::dict& pCurves) {
  Photo::sHueCurveOptions curves{ReadPoints(pCurves, "hue_shift"), ReadPoints(pCurves, "saturation"),
                                 ReadPoints(pCurves, "lightness")};
  const auto mode = pCurves["mode"].cast<std::string>();
  if (mode == "linear") {
    curves.fMode = TmEngine::eSplineInterpolationMode_Linear;
  } else if (mode == "flat") {
    curves.fMode = TmEngine::eSplineInterpolationMode_Flat;
  } else if (mode != "smooth") {
    throw py::value_error("mode is '" + mode + "'; it must be smooth, linear or flat");
  }
  return curves;
}

py::array ChooseOutput(const py::object& pOut, const sPixelArray& pLike, int pDepth) {
  const py::dtype type = TypeOf(pDepth);
  if (pOut.is_none()) return py::array(type, {pLike.fHeight, pLike.fWidth, pLike.fChannels});
  if (!py::isinstance<py::array>(pOut)) throw py::type_error("out must be an array");
  auto out = py::reinterpret_borrow<py::array>(pOut);
  const sPixelArray view = ViewWritable(out, "out");
  if (view.fHeight != pLike.fHeight || view.fWidth != pLike.fWidth || view.fChannels != pLike.fChannels) {
    throw py::value_error("out has another shape than image");
  }
  if (view.IsOfFloats() || 8 * view.SampleBytes() != pDepth) {
    throw py::value_error("out has samples of " + std::string(py::str(static_cast<py::object>(out.dtype()))) +
                          "; depth " + std::to_string(pDepth) + " makes uint" + std::to_string(pDepth));
  }
  return out;
}

void CheckIntegers(const sPixelArray& pPixels, const std::string& pName) {
  if (pPixels.IsOfFloats()) {
    throw py::value_error(pName + " must have samples of uint8 or uint16; tonemap() makes them");
  }
}

}  // namespace Python
