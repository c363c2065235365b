#pragma once

#include <pybind11/pybind11.h>

#include <functional>

#include "photo/decode/LdrReader.h"
#include "photo/picture/Watch.h"

namespace Python {

/// RunWatched, or what goes around it.
using tRun = void (*)(const pybind11::object&, const std::function<void(Photo::cWatch&)>&);

/// How far two pictures are apart, as a dictionary. Both are made by pRun. Throws cFailure for two sizes.
pybind11::dict MeasureDifference(const std::function<Photo::sLdrPicture()>& pMakeA,
                                 const std::function<Photo::sLdrPicture()>& pMakeB, tRun pRun);

}  // namespace Python
