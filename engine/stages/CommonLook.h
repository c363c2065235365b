#pragma once

#include <cmath>
#include <optional>

#include "engine/stages/BlackWhitePoints.h"
#include "engine/stages/LayerStatistics.h"

namespace TmEngine {

/// Typical values of the layers, in log10 units (see sLayerStatistics).
struct sLayerMeans {
  float fBase = 0.0f;
  float fDetail = 0.0f;

  bool operator==(const sLayerMeans&) const = default;
};

/// What pictures of a set share, so that what is alike in two of them is rendered alike, whatever else is in
/// them. With one, the cells of the base layer also lie at the same luminances in each picture.
struct sCommonLook {
  std::optional<sLayerMeans> fMeans;   ///< None: those of the picture. Tone Compression refers to them.
  std::optional<sBlackWhite> fPoints;  ///< None: those that the clip percentages give.

  bool operator==(const sCommonLook&) const = default;
};

/// The lower end of a range, moved down to a multiple of pCell.
inline float AlignedStart(float pStart, float pCell) {
  return std::floor(pStart / pCell) * pCell;
}

}  // namespace TmEngine
