#pragma once

#include <vector>

#include "engine/image/PixelRows.h"
#include "photo/picture/PictureRows.h"
#include "photo/picture/PictureStatistics.h"

namespace Cli {

/// Thrown where rows cannot be rendered as they come: one of them depends on what all others hold.
struct sNeedsWholePicture {};

/// Gives the engine a picture's rows as they come from the file, so that the picture is never in memory as a
/// whole. For one rendering. The rows stay the caller's.
class cFileSource : public TmEngine::cRowSource {
 public:
  explicit cFileSource(cPictureRows& pRows);

  /// Throws sNeedsWholePicture, and what reading throws.
  void ReadRun(int pY, int pX, int pCount, float* pToX, float* pToY, float* pToZ) const override;

  /// Of the rows that have passed, as SamplePicture takes it.
  sPictureStatistics GetSample() const { return fState.fSampler.Get(); }
  /// What reading took.
  double GetSeconds() const { return fState.fSeconds; }

 private:
  /// The engine takes the source for one that does not change, as it never asks twice.
  struct sState {
    cPictureRows& fRows;
    cLuminanceSampler fSampler;
    std::vector<float> fRow;  ///< That was read last.
    int fY = -1;              ///< Its place.
    double fSeconds = 0.0;
  };

  void ReadRow(int pY) const;

  mutable sState fState;
};

}  // namespace Cli
