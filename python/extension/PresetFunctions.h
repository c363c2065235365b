#pragma once

#include <pybind11/pybind11.h>

namespace Python {

/// list_presets, load_preset, sliders.
void AddPresetFunctions(pybind11::module_& pModule);

}  // namespace Python
