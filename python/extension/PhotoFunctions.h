#pragma once

#include <pybind11/pybind11.h>

namespace Python {

/// What takes pictures out of files, and puts them there: read, write, Metadata.
void AddPhotoFunctions(pybind11::module_& pModule);

}  // namespace Python
