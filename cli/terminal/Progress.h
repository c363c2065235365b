#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "cli/terminal/PassedOver.h"
#include "photo/PictureRecord.h"

namespace Tool {

enum class eProgress { kAuto, kBar, kPlain, kJson, kNone };

/// Reports on standard error how a run goes: warnings and failures in every way of reporting, the rest as
/// asked for. A bar is one line that is drawn anew.
class cProgress {
 public:
  /// pWay: not kAuto, see ChooseProgress. pLeftOut: null where no folders were searched.
  cProgress(eProgress pWay, std::size_t pPictures, const sLeftOut* pLeftOut);

  void NoteFolder(const sUnreadableFolder& pFolder);  ///< One that could not be read.
  void Report(const Photo::sTonemapJob& pJob, const Photo::tPictureRecord& pRecord);
  void Warn(const std::string& pText);  ///< Of the run, not of a picture.
  /// That pDone of pPictures have been looked at before the work on them begins; time counts from the last.
  void NoteLook(std::size_t pDone, std::size_t pPictures);
  void Draw();                                 ///< The bar, with the time that is left by now.
  void Finish();                               ///< The summary.
  void Interrupt(Photo::eExisting pExisting);  ///< The summary of what was done, and how to go on.

  Photo::tPictureRecord MakeSummary() const;  ///< For other programs.

  bool HasFailed() const { return fFailed + fFolders > 0; }
  bool HasBar() const { return fWay == eProgress::kBar; }

 private:
  void Count(const Photo::sTonemapJob& pJob, const std::string& pStatus);
  void ReportPlainly(const Photo::sTonemapJob& pJob, const std::string& pStatus) const;
  void Fail(const std::string& pMessage) const;
  Photo::tPictureRecord MakeEvent(const char* pEvent, const std::string& pInput = "") const;
  std::string Summarise() const;
  double GetSeconds() const;
  double GetRate() const;
  double GetSecondsLeft() const;

  eProgress fWay;
  bool fHasColour;
  std::size_t fPictures;
  std::size_t fDone = 0;
  std::size_t fSkipped = 0;
  std::size_t fFailed = 0;
  std::size_t fFolders = 0;  ///< That could not be read.
  const sLeftOut* fLeftOut;
  std::vector<std::string> fFailedInputs;
  std::chrono::steady_clock::time_point fStart = std::chrono::steady_clock::now();
};

/// What kAuto stands for: nothing for one picture that was named, a bar on a terminal, else lines.
eProgress ChooseProgress(eProgress pAsked, bool pIsOneNamed);

}  // namespace Tool
