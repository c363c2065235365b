#pragma once

#include <pybind11/pybind11.h>

namespace Python {

/// Makes pModule raise quorvane.Error, ValueError, MemoryError and OSError for what this project throws.
void RegisterFailures(pybind11::module_& pModule);

/// Raises quorvane.Cancelled.
[[noreturn]] void RaiseCancelled();

}  // namespace Python
