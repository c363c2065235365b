#pragma once

#include <string>
#include <vector>

#include "photo/decode/LdrReader.h"
#include "photo/encode/OutputFormat.h"
#include "photo/io/TempFile.h"
#include "photo/picture/MemoryGate.h"
#include "photo/picture/PictureChoice.h"
#include "photo/picture/ResultPixels.h"
#include "photo/picture/Watch.h"
#include "photo/render/CurvePoints.h"

namespace Photo {

/// One finished picture to change by curves over hue, from file to file, or into a stream.
struct sEqualizeJob {
  std::string fInput;
  std::string fOutput;
  int fOutputStream = cTempFile::kNoStream;  ///< As in sTonemapJob.
  eOutputFormat fFormat = eOutputFormat::kPng;
  sPictureChoice fSource;
  sHueCurveOptions fCurves;
  int fDepth = 0;  ///< 0 for the input's, or the most that the format holds.
  sFileOptions fFile;
  bool fMayReplace = false;
  tMemoryGate fMemoryGate;   ///< Asked before the pixels are read.
  cWatch* fWatch = nullptr;  ///< Null for none.
};

/// Changes the pixels by curves over hue; renders into pPicture's own where the depth stays. pWatch: null
/// for none. Throws cFailure.
cResultPixels EqualizePixels(sLdrPicture& pPicture, int pDepth, const sHueCurveOptions& pCurves,
                             cWatch* pWatch = nullptr);

/// Reads, renders and writes one picture; the target is set in one step, or stays as it is. pWarnings: what
/// had to be put right or left out so far, also where the work fails. libvips must be running. Throws
/// cFailure.
void EqualizePicture(const sEqualizeJob& pJob, std::vector<std::string>& pWarnings);

}  // namespace Photo
