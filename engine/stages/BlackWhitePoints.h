#pragma once

#include <cstdint>
#include <memory>

#include "engine/base/Plane.h"
#include "engine/stages/ToneMapping.h"

namespace TmEngine {

class cBitmapU16T;
struct sStageRun;

/// Tone-mapped luminances that become output black and white.
struct sBlackWhite {
  float fBlack = 0.0f;
  float fWhite = 1.0f;

  bool operator==(const sBlackWhite&) const = default;
};

/// 65,536 counters over the range of the tone-mapped luminance.
class cLuminanceHistogram {
 public:
  /// Counts every record. Polls before each row; see WasStopped.
  cLuminanceHistogram(cBitmapU16T& pRecords, const sToneMappedRange& pRange, const sStageRun& pRun);

  /// Whether only a part of the records is counted.
  bool WasStopped() const { return fWasStopped; }
  /// Whether there was no memory for the counters.
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
  bool fWasStopped = false;
};

}  // namespace TmEngine
