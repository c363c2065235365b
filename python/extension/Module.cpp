#include <pybind11/pybind11.h>

#include "python/extension/ArrayFunctions.h"
#include "python/extension/Failures.h"
#include "python/extension/FileFunctions.h"
#include "python/extension/PhotoFunctions.h"
#include "python/extension/PresetFunctions.h"

PYBIND11_MODULE(_quorvane, pModule) {
  pModule.attr("__version__") = QUORVANE_VERSION;
  pModule.attr("has_exiv2") = QUORVANE_HAS_EXIV2 != 0;
  Python::RegisterFailures(pModule);
  Python::AddArrayFunctions(pModule);
  Python::AddFileFunctions(pModule);
  Python::AddPhotoFunctions(pModule);
  Python::AddPresetFunctions(pModule);
}
