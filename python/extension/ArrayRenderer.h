#pragma once

#include <memory>
#include <optional>
#include <string>

#include "engine/cTmRenderer.h"
#include "photo/picture/PictureSource.h"
#include "photo/picture/PictureStatistics.h"
#include "photo/picture/Watch.h"
#include "photo/render/Settings.h"
#include "python/extension/ArrayRows.h"
#include "python/extension/PixelArray.h"

namespace Python {

/// Tone-maps the picture in an array, which must stay as it is. Of a second rendering only those stages run
/// whose settings changed. For one thread at a time.
class cArrayRenderer {
 public:
  /// pSource: the space of floats. pSpace: that of integers, and of the result. Throws cFailure for rows that
  /// are too long.
  cArrayRenderer(const sPixelArray& pPixels, const std::string& pSource, TmEngine::eColorSpaceID pSpace);

  /// pTo: of integers, with the picture's size and channels. pDithers: for 8 bits. Throws cFailure.
  void Render(const Photo::sSettings& pSettings, bool pDithers, const sPixelArray& pTo,
              Photo::cWatch& pWatch);

  /// How long each stage took when it last ran.
  TmEngine::sStageSeconds GetSeconds() const;
  /// What had to be repaired so far; nothing of integers.
  Photo::sRepairs GetRepairs() const;

 private:
  bool DecideWrap(Photo::eWrap pWrap, Photo::cWatch& pWatch);
  void Load(Photo::cWatch& pWatch);
  const TmEngine::cRowSource& MakeSource(int pStart, Photo::cWatch& pWatch);
  bool Run(const Photo::sSettings& pSettings, bool pWrap, bool pDithers, const sPixelArray& pTo,
           Photo::cWatch& pWatch);
  bool IsFlat() const;

  sPixelArray fPixels;
  std::string fSourceName;
  TmEngine::eColorSpaceID fSpace;

  std::unique_ptr<TmEngine::cTmRenderer> fRenderer;  ///< Null until there are stages to keep.
  Photo::sSettings fSettings;                        ///< Those that it is set up for.
  int fStart = 0;                                    ///< The column that its rows begin with.

  /// What the renderer reads: rows of floats, a picture in memory where they depend on each other or its
  /// edges meet, or integers.
  std::unique_ptr<cFloatRows> fRows;
  std::unique_ptr<Photo::cPictureSource> fStream;
  std::unique_ptr<Photo::sPicture> fLoaded;
  std::unique_ptr<TmEngine::cRowSource> fSource;
  std::optional<Photo::cWatchedSource>
      fWatched;  ///< Of these; the watch is not used once they have been read.
  Photo::sRepairs fRepairs;
};

/// Statistics of a sample of the array's pixels, as of a file's (see Photo::SamplePicture).
Photo::sPictureStatistics SampleArray(const sPixelArray& pPixels, const std::string& pSource,
                                      TmEngine::eColorSpaceID pSpace, Photo::cWatch& pWatch);

}  // namespace Python
