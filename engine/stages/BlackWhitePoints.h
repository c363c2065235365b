#pragma once

#include <cstdint>
#include <memory>

#include "engine/base/Plane.h"
#include "engine/stages/ToneMapping.h"

namespace TmEngine {

class cBitmapU16T;

/// Tone-mapped luminances that become output black and white.
struct sBlackWhite {
  float fBlack = 0.0f;
  float fWhite = 1.0f;
};

/// 65,536 counters over the range of the tone-mapped luminance.
class cLuminanceHistogram {
 public:
  /// Counts every record. Without memory the histogram stays empty (see IsEmpty). Polls pCancel before each
  /// row; sets pAborted and leaves the histogram unfinished when it is set. Both may be null.
  cLuminanceHistogram(cBitmapU16T& pRecords, const sToneMappedRange& pRange, const bool* pCancel = nullptr,
                      bool* pAborted = nullptr);

  bool IsEmpty() const { return fCounts == nullptr; }

  /// Black and white points with the given per cent of the pixels beyond them; 0 and 1 without a histogram.
  sBlackWhite Points(float pBlackClip, float pWhiteClip) const;

  /// Writes the line with the percentiles to standard error.
  void LogPercentiles() const;

 private:
  float ValueAt(int pBin) const { return static_cast<float>(pBin) / fScale + fMin; }

  /// Bins taken from the dark end while pGoesOn(pixels in them).
  template <class tGoesOn>
  int WalkUp(const tGoesOn& pGoesOn) const;
  /// The bin reached from the bright end while pGoesOn(pixels that remain below).
  template <class tGoesOn>
  int WalkDown(const tGoesOn& pGoesOn) const;

  std::unique_ptr<std::uint32_t[], sFreeBlock> fCounts;
  float fMin;
  float fScale;  // bins per unit of luminance
  std::int64_t fPixels;
  int fWidth;
  int fHeight;
};

}  // namespace TmEngine
