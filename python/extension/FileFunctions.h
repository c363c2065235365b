#pragma once

#include <pybind11/pybind11.h>

namespace Python {

/// What works on files: tonemap_file, equalize_file, inspect, read, write, compare_files, presets.
void AddFileFunctions(pybind11::module_& pModule);

}  // namespace Python
