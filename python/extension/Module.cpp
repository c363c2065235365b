#include <pybind11/pybind11.h>

#include "photo/render/Settings.h"
#include "python/extension/Arguments.h"
#include "python/extension/ArrayFunctions.h"
#include "python/extension/Failures.h"
#include "python/extension/FileFunctions.h"

namespace py = pybind11;

/// A tuple (keyword, lowest, highest, default, meaning) for each slider.
static py::list ListSliders() {
  py::list list;
  for (const Photo::sSlider& slider : Photo::GetSliders()) {
    list.append(py::make_tuple(Python::GetKeyword(slider), slider.fLowest, slider.fHighest,
                               Photo::sSettings().*slider.fField, slider.fMeaning));
  }
  return list;
}

PYBIND11_MODULE(_quorvane, pModule) {
  pModule.attr("__version__") = QUORVANE_VERSION;
  pModule.attr("has_exiv2") = QUORVANE_HAS_EXIV2 != 0;
  Python::RegisterFailures(pModule);
  Python::AddArrayFunctions(pModule);
  Python::AddFileFunctions(pModule);
  pModule.def("sliders", &ListSliders);
}
