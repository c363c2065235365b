#pragma once

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <string>

#include "photo/encode/OutputOptions.h"
#include "photo/picture/PictureChoice.h"

namespace Python {

/// Keywords of a call, taken one by one.
class cOptions {
 public:
  explicit cOptions(const pybind11::dict& pOptions) : fOptions(pOptions) {}

  template <class tValue>
  tValue Get(const char* pName, tValue pDefault) const {
    if (!fOptions.contains(pName) || fOptions[pName].is_none()) return pDefault;
    try {
      return fOptions[pName].cast<tValue>();
    } catch (const pybind11::cast_error&) {
      throw pybind11::type_error(std::string(pName) + " is " + std::string(pybind11::repr(fOptions[pName])) +
                                 ", which has another type than it takes");
    }
  }
  /// Throws ValueError for a value that is out of its range.
  int GetWithin(const char* pName, int pLowest, int pHighest, int pDefault) const;

 private:
  pybind11::dict fOptions;
};

// All throw ValueError or TypeError for values that they do not take.

Photo::sPictureChoice ToChoice(const cOptions& pOptions);
Photo::sFileOptions ToFileOptions(const cOptions& pOptions);
Photo::sOutputOptions ToOutputOptions(const cOptions& pOptions);

}  // namespace Python
