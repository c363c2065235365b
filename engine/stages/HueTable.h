#pragma once

#include "engine/math/Quantise.h"

namespace TmEngine {

/// Colours of full value by hue: what a pixel's three channels are made of, between its smallest (0) and its
/// largest (1) channel. A large object: put it on the heap.
class cHueTable {
 public:
  struct sColor {
    float fR, fG, fB;
  };

  cHueTable();  ///< Neutral: hue code i gives the hexcone's colour of hue i with minimum 0.

  /// pHueShift: 65,536 entries, 32767 leaves a hue as it is. pSaturation: 65,536 entries, 0.5 leaves the
  /// saturation as it is, less desaturates, more oversaturates. Polls pCancel every few entries; returns
  /// false, with the table unfinished, when it is set.
  bool Build(const unsigned short* pHueShift, const float* pSaturation, const bool* pCancel = nullptr);

  const sColor& operator[](unsigned short pHue) const { return fColors[pHue]; }
  /// The table as three floats a hue.
  const float* Elements() const { return &fColors[0].fR; }

 private:
  sColor fColors[kTableSize];
};

}  // namespace TmEngine
