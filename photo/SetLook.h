#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "photo/TonemapPicture.h"
#include "photo/picture/PictureStatistics.h"

namespace Photo {

/// What the pictures of a set are looked at for; each needs what those before it found.
enum class eLookStep {
  kLight,   ///< The luminance, from which --auto's rule chooses.
  kLayers,  ///< Means of base and detail, to which Tone Compression refers.
  kPoints   ///< The tone-mapped luminance, of which black and white points are quantiles.
};

/// What one picture adds to the look of its set, of a sample of its pixels.
struct sLookPart {
  sPictureStatistics fLuminance;  ///< Of kLight and kPoints.
  double fBase = 0.0;             ///< Of kLayers: means, as in sLayerStatistics, over fPixels.
  double fDetail = 0.0;
  std::int64_t fPixels = 0;  ///< 0 for a picture of one luminance, which adds nothing.
};

/// Reads the job's picture and looks at it; pJob.fSettings are those of cSetLook. libvips must be running.
/// Throws cFailure.
sLookPart LookAtPicture(const sTonemapJob& pJob, eLookStep pStep);

/// Finds the settings of a set, step by step: as long as GetStep gives one, every picture is looked at with
/// GetSettings, and Add takes all that was found. What is common is taken from the pixels of all pictures
/// together, as if they lay in one.
class cSetLook {
 public:
  /// pJob: its settings, changes and whether they are chosen.
  explicit cSetLook(const sTonemapJob& pJob);

  std::optional<eLookStep> GetStep() const;
  /// pParts: in an order that stays the same, so that the sums do.
  void Add(const std::vector<sLookPart>& pParts);
  /// In the end with the look of the set; without one where no picture has two luminances.
  const sSettings& GetSettings() const { return fSettings; }

 private:
  void ChooseSliders(const std::vector<sLookPart>& pParts);
  void FindMeans(const std::vector<sLookPart>& pParts);
  void FindPoints(const std::vector<sLookPart>& pParts);

  sSettingsChange fChange;
  sSettings fSettings;
  bool fNeedsLight;
};

}  // namespace Photo
