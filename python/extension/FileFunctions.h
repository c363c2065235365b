#pragma once

#include <pybind11/pybind11.h>

namespace Python {

/// What works from file to file, or measures files: tonemap_file, equalize_file, inspect, compare_files.
void AddFileFunctions(pybind11::module_& pModule);

}  // namespace Python
