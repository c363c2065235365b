#pragma once

#include <optional>
#include <vector>

#include "engine/image/PixelRows.h"
#include "photo/picture/PictureRows.h"
#include "photo/picture/PictureStatistics.h"
#include "photo/picture/Watch.h"

namespace Photo {

/// Gives the engine a picture's rows as they come from the file, so that the picture is never in memory as a
/// whole. For one rendering. The rows stay the caller's.
///
/// A row may turn out to depend on what all others hold. Then the source asks the engine to stop (see
/// GetStopRequest), which it does before it works on what it has got; the picture must be loaded instead.
class cPictureSource : public TmEngine::cRowSource {
 public:
  /// pWatch: whose request to stop is set, in place of one of the source's own; null for none.
  explicit cPictureSource(cPictureRows& pRows, cWatch* pWatch = nullptr);

  /// Throws what reading throws.
  void ReadRun(int pY, int pX, int pCount, float* pToX, float* pToY, float* pToZ) const override;

  /// What the renderer takes as its request to cancel.
  bool* GetStopRequest() { return fState.fStopRequest; }
  /// Whether that was the source's own doing.
  bool NeedsWholePicture() const { return fState.fNeedsWholePicture; }
  /// After the last row: what had to be repaired.
  const std::optional<sRepairs>& GetRepairs() const { return fState.fRepairs; }
  /// Statistics of the rows that were read, sampled as SamplePicture does.
  sPictureStatistics GetSample() const { return fState.fSampler.Get(); }
  /// Time spent on reading.
  double GetSeconds() const { return fState.fSeconds; }

 private:
  /// For the engine the source is constant: it asks for each row once.
  struct sState {
    cPictureRows& fRows;
    cLuminanceSampler fSampler;
    std::vector<float> fRow;  ///< The row that was read last.
    int fY = -1;              ///< Its number.
    std::optional<sRepairs> fRepairs = std::nullopt;
    bool fNeedsWholePicture = false;
    bool fIsStopped = false;
    bool* fStopRequest = nullptr;
    double fSeconds = 0.0;
  };

  void ReadRow(int pY) const;
  void Finish() const;

  mutable sState fState;
};

}  // namespace Photo
