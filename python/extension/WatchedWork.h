#pragma once

#include <pybind11/pybind11.h>

#include <functional>

#include "photo/picture/Watch.h"

namespace Python {

/// Does pWork on a thread of its own, without the interpreter's lock. Meanwhile this thread looks for
/// signals, and calls pProgress (None for none) with the share that is done: first 0, last 1, never less than
/// before. The work is cancelled when a signal's handler raises (Ctrl-C), or pProgress raises, or returns
/// False before the end. Raises what they raise, or quorvane.Cancelled, or throws what pWork throws.
void RunWatched(const pybind11::object& pProgress, const std::function<void(Photo::cWatch&)>& pWork);

}  // namespace Python
