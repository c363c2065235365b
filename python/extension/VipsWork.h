#pragma once

#include <pybind11/pybind11.h>

#include <functional>

#include "photo/picture/Watch.h"

namespace Python {

/// RunWatched for work that libvips takes part in. It is started here, and never ended: other modules may use
/// it as well.
void RunWithVips(const pybind11::object& pProgress, const std::function<void(Photo::cWatch&)>& pWork);

}  // namespace Python
