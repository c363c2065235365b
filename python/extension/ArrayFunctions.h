#pragma once

#include <pybind11/pybind11.h>

namespace Python {

/// What works on arrays: tonemap, Renderer, auto_settings, equalize, compare_arrays.
void AddArrayFunctions(pybind11::module_& pModule);

}  // namespace Python
