#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "photo/encode/OutputOptions.h"
#include "photo/encode/PictureWriter.h"
#include "photo/picture/MemoryGate.h"
#include "photo/picture/PictureChoice.h"
#include "photo/render/PictureRendering.h"
#include "photo/render/Settings.h"

namespace Photo {

/// What is done where the target exists.
enum class eExisting { kRefuse, kReplace, kSkip };

/// One picture to tone-map, from file to file, or into a stream.
struct sTonemapJob {
  std::string fInput;
  std::string fOutput;
  /// An open handle that the result is written to in place of a file; fOutput is then its name in messages.
  int fOutputStream = cTempFile::kNoStream;
  std::string fStreamFormat = "png";  ///< What goes into a stream, as a file extension without its point.
  eExisting fExisting = eExisting::kRefuse;
  bool fMakesFolder = false;  ///< Whether the target's folder is made where it is missing.
  sSettings fSettings;        ///< The base,
  bool fAuto = false;         ///< or chosen from the picture instead,
  sSettingsChange fChange;    ///< and what is laid over it.
  sPictureChoice fSource;     ///< Its fIgnoresAlpha follows from fResult.
  sOutputOptions fResult;
  tMemoryGate fMemoryGate;  ///< Asked before the pixels are read.
  bool fVerbose = false;
  cWatch* fWatch = nullptr;  ///< Null for none.
};

/// What is known of a picture when it is done.
struct sPictureReport {
  int fWidth = 0;
  int fHeight = 0;
  std::string fFormat;  ///< As in sPicture.
  std::string fColorSpace;
  int fFileDepth = 0;
  sRepairs fRepairs;
  double fDynamicRange = 0.0;  ///< Decades of luminance, of a sample (see sPictureStatistics).
  sSettings fSettings;         ///< As they were used.
  sRenderingReport fRendering;
  double fReadSeconds = 0.0;
  double fWriteSeconds = 0.0;
  std::vector<std::string> fWarnings;  ///< Parameters are named as NameParameters takes them.
};

/// The format that a job's target, or its stream, asks for, checked against its depth. Throws cFailure.
eOutputFormat ChooseJobFormat(const sTonemapJob& pJob);

/// Refuses dithering of more than 8 bits. Throws cFailure (usage).
void CheckDither(const sOutputOptions& pResult);

/// What is read of a job's picture.
sPictureChoice ChooseSource(const sTonemapJob& pJob);

/// Whether the target exists already, as a file.
bool HasTarget(const sTonemapJob& pJob);

/// Reads, renders and writes one picture; the target is set in one step, or stays as it is. libvips must be
/// running. What exists is refused unless it is to be replaced: leaving pictures out is the caller's
/// business. Throws cFailure.
sPictureReport TonemapPicture(const sTonemapJob& pJob);

}  // namespace Photo
