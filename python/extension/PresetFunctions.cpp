#include "python/extension/PresetFunctions.h"

#include <string>

#include "photo/Presets.h"
#include "photo/Printable.h"
#include "photo/render/Settings.h"
#include "python/extension/Arguments.h"

namespace Python {
namespace {

namespace py = pybind11;

/// A tuple (keyword, lowest, highest, default, meaning) for each slider.
py::list ListSliders() {
  py::list list;
  for (const Photo::sSlider& slider : Photo::GetSliders()) {
    list.append(py::make_tuple(GetKeyword(slider), slider.fLowest, slider.fHighest,
                               Photo::sSettings().*slider.fField, slider.fMeaning));
  }
  return list;
}

py::list ListPresets(const std::string& pUserFolder, const std::string& pOwnFolder) {
  py::list list;
  for (const Photo::sPresetEntry& entry : Photo::FindPresets({pUserFolder, pOwnFolder})) {
    if (!entry.fIsHidden && entry.fFault.empty()) list.append(Photo::ToPrintable(entry.fName));
  }
  return list;
}

py::tuple LoadPreset(const std::string& pUserFolder, const std::string& pOwnFolder,
                     const std::string& pName) {
  const Photo::sPreset preset = Photo::LoadPreset({pUserFolder, pOwnFolder}, pName);
  return py::make_tuple(ToDict(preset.fChange), Photo::ToPrintable(preset.fDescription));
}

}  // namespace

void AddPresetFunctions(py::module_& pModule) {
  pModule.def("sliders", &ListSliders);
  pModule.def("list_presets", &ListPresets);
  pModule.def("load_preset", &LoadPreset);
}

}  // namespace Python
