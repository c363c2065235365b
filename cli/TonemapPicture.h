#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cli/Options.h"
#include "cli/PictureRendering.h"
#include "cli/Settings.h"

namespace Cli {

/// One picture to tone-map, from file to file.
struct sTonemapJob {
  std::string fInput;
  std::string fOutput;
  sSettings fSettings;      ///< The ground,
  bool fAuto = false;       ///< or chosen from the picture instead,
  sSettingsChange fChange;  ///< and what is laid over it.
  sOutputOptions fResult;
  int fPreview = 0;  ///< Pixels on the longer side of the result; 0 for as many as the picture has.
  bool fVerbose = false;
};

/// What is told of a picture when it is done.
struct sPictureReport {
  int fWidth = 0;
  int fHeight = 0;
  std::string fFormat;  ///< As in sPicture.
  std::string fColorSpace;
  int fFileDepth = 0;
  sRepairs fRepairs;
  sSettings fSettings;  ///< As used.
  sRenderingReport fRendering;
  double fReadSeconds = 0.0;
  double fWriteSeconds = 0.0;
  std::vector<std::string> fWarnings;
};

/// Reads, renders and writes one picture; the target is replaced in one step, or stays as it is. libvips must
/// be running. Throws cFailure.
sPictureReport TonemapPicture(const sTonemapJob& pJob);

}  // namespace Cli
