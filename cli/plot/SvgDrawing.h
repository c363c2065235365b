#pragma once

#include <fmt/format.h>

#include <string>
#include <utility>

#include "photo/io/TempFile.h"

namespace Tool {

/// What a drawing is written as.
enum class ePlotFormat { kSvg, kPng };

/// The format that the extension of the name asks for. Throws cFailure.
ePlotFormat ChoosePlotFormat(const std::string& pFile);

/// Writes the drawing and lets the file take its target's place. libvips must be running. Throws cFailure.
void WritePlot(const std::string& pSvg, ePlotFormat pFormat, Photo::cTempFile& pFile);

/// Values along one side of a drawing's field.
struct sAxis {
  double fFrom;   ///< The value at fStart,
  double fTo;     ///< and at fEnd.
  double fStart;  ///< In the drawing's units.
  double fEnd;

  double At(double pValue) const { return fStart + (fEnd - fStart) * (pValue - fFrom) / (fTo - fFrom); }
};

/// An SVG drawing on white, element by element. Lines and texts get their look from the classes of its style:
/// grid, faint, neutral, curve for lines; title, heading, label, name, tick, note for texts, which start and
/// left align.
class cSvgDrawing {
 public:
  cSvgDrawing(int pWidth, int pHeight, const std::string& pTitle);

  template <class... tValues>
  void Add(fmt::format_string<tValues...> pFormat, tValues&&... pValues) {
    fText += fmt::format(pFormat, std::forward<tValues>(pValues)...);
  }
  void AddText(double pX, double pY, const char* pAttributes, const std::string& pText);
  /// A label, turned so that it reads from below.
  void AddTurnedText(double pX, double pY, const std::string& pText);
  void AddLine(double pX1, double pY1, double pX2, double pY2, const char* pAttributes);

  /// The whole text; nothing may be added any more.
  std::string Finish();

 private:
  std::string fText;
};

}  // namespace Tool
