#pragma once

#include <pybind11/numpy.h>

#include <string>
#include <vector>

#include "photo/picture/Repairs.h"
#include "photo/render/CurvePoints.h"
#include "photo/render/Settings.h"
#include "python/extension/PixelArray.h"

namespace Python {

/// Settings from a dictionary of keywords; those that are missing are not changed. Throws ValueError for a
/// value out of its range.
Photo::sSettingsChange ToChange(const pybind11::dict& pSettings);
/// The reverse.
pybind11::dict ToDict(const Photo::sSettingsChange& pChange);

/// How many pixels were repaired, by kind.
pybind11::dict ToDict(const Photo::sRepairs& pRepairs);

/// Warnings as people read them: parameters under their names, without what a terminal would obey.
std::vector<std::string> ToTexts(const std::vector<std::string>& pWarnings);

/// What a keyword calls a slider: "tone_compression".
std::string GetKeyword(const Photo::sSlider& pSlider);

/// Curves over hue from texts, as the tool takes them: hue_shift, saturation, lightness ("" for none), and
/// mode. Throws ValueError.
Photo::sHueCurveOptions ToCurves(const pybind11::dict& pCurves);

/// The array that a result goes to: pOut, checked, or a new one (for None). pLike: the picture. pDepth: 8 or
/// 16. Throws ValueError.
pybind11::array ChooseOutput(const pybind11::object& pOut, const sPixelArray& pLike, int pDepth);

/// Throws ValueError unless the samples are integers.
void CheckIntegers(const sPixelArray& pPixels, const std::string& pName);

}  // namespace Python
