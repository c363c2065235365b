#include "photo/TonemapPicture.h"

#include <chrono>
#include <filesystem>
#include <utility>

#include "cli/batch/MemoryBudget.h"
#include "cli/batch/StandardStreams.h"
#include "photo/SettingsJson.h"
#include "photo/base/Failure.h"
#include "photo/decode/PictureReader.h"
#include "photo/icc/NamedProfile.h"
#include "photo/picture/Alpha.h"
#include "photo/picture/Panorama.h"
#include "photo/picture/PictureSource.h"
#include "photo/picture/Preview.h"
#include "photo/picture/ResultAlpha.h"
#include "photo/render/AutoSettings.h"

namespace Cli {
namespace {

using tClock = std::chrono::steady_clock;

double SecondsSince(tClock::time_point pStart) {
  return std::chrono::duration<double>(tClock::now() - pStart).count();
}

/// The folder of a target, and those above it.
void MakeFolder(const std::string& pTarget) {
  const std::filesystem::path folder = std::filesystem::path(pTarget).parent_path();
  std::error_code error;
  if (!folder.empty()) std::filesystem::create_directories(folder, error);
  if (error) {
    throw cFailure(eFailure::kCannotWrite, pTarget,
                   "its folder cannot be made (" + error.message() + "); give another --out-dir");
  }
}

void TellRange(const sPictureStatistics& pStatistics, sPictureReport& pReport) {
  pReport.fDynamicRange = pStatistics.CountPositive() > 0 ? pStatistics.GetDynamicRange() : 0.0;
}

sSettings GetGivenSettings(const sTonemapJob& pJob) {
  sSettings settings = pJob.fSettings;
  Apply(pJob.fChange, settings);
  return settings;
}

/// Whether the first row can be worked on before the last one is known.
bool CanBeStreamed(const sTonemapJob& pJob, const sPicture& pPicture) {
  const bool isLookedAtBefore = pJob.fAuto || pJob.fResult.fPreview > 0;
  if (pPicture.fRows->HasAlpha() || isLookedAtBefore) return false;
  const eWrap wrap = GetGivenSettings(pJob).fWrap;
  const bool mayMeet =
      pPicture.fIsPanorama || HasPanoramaShape(pPicture.fRows->GetWidth(), pPicture.fRows->GetHeight());
  return wrap == eWrap::kNone || (wrap == eWrap::kAuto && !mayMeet);
}

/// Reads the rest of the picture, and does what is done before the engine's work.
void Load(const sTonemapJob& pJob, sPicture& pPicture, sPictureReport& pReport) {
  const auto start = tClock::now();
  LoadRows(pJob.fInput, pPicture);
  SettleAlpha(pPicture);
  pReport.fReadSeconds += SecondsSince(start);
  const sPictureStatistics statistics = SamplePicture(pPicture);
  TellRange(statistics, pReport);
  if (pJob.fAuto) {
    pReport.fSettings = SuggestSettings(statistics);
    Apply(pJob.fChange, pReport.fSettings);
  }
  if (pJob.fResult.fPreview > 0)
    pPicture = ReducePicture(pJob.fInput, std::move(pPicture), pJob.fResult.fPreview);
}

/// The engine's preparation asks for the rows: reading them is no part of its time.
cResultPixels RenderStreamed(const sTonemapJob& pJob, sPicture& pPicture, sPictureReport& pReport) {
  const cFileSource source(*pPicture.fRows);
  cResultPixels result =
      RenderRows(pJob.fInput, source, pReport.fSettings, pJob.fResult, pJob.fVerbose, pReport.fRendering);
  if (!pPicture.fRows->Finish(pPicture)) throw sNeedsWholePicture();
  pPicture.fRows.reset();
  TellRange(source.GetSample(), pReport);
  pReport.fReadSeconds += source.GetSeconds();
  pReport.fRendering.fSeconds.fPreparation -= source.GetSeconds();
  return result;
}

sPictureChoice ChooseSource(const sTonemapJob& pJob) {
  sPictureChoice choice = pJob.fSource;
  choice.fIgnoresAlpha = pJob.fResult.fAlpha.fMode == eAlpha::kIgnore;
  return choice;
}

/// Of an opaque picture nothing is left to lay over anything.
void LayOverColour(const sOutputOptions& pOptions, sPicture& pPicture, cResultPixels& pResult) {
  if (pOptions.fAlpha.fMode != eAlpha::kColour || pPicture.fAlpha.empty()) return;
  LayOver(pOptions.fAlpha.fColour, pOptions.fColorSpace, pPicture.fIsPremultiplied, pPicture.fAlpha, pResult);
  pPicture.fAlpha.clear();
}

void TellOfPicture(const sPicture& pPicture, sPictureReport& pReport) {
  pReport.fFormat = pPicture.fFormat;
  pReport.fColorSpace = pPicture.fColorSpace;
  pReport.fFileDepth = pPicture.fFileDepth;
  pReport.fRepairs = pPicture.fRepairs;
  pReport.fWarnings = pPicture.fWarnings;
}

sPictureReport Tonemap(const sTonemapJob& pJob, bool pMayStream) {
  const eOutputFormat format = ChooseJobFormat(pJob);
  if (pJob.fOutput != kStandardStream) CheckIsAnother(pJob.fInput, pJob.fOutput);
  if (pJob.fExisting != eExisting::kReplace && HasTarget(pJob))
    RefuseExisting(pJob.fOutput, ", --skip-existing leaves it as it is");
  sPictureReport report;
  report.fSettings = GetGivenSettings(pJob);
  TakeGateSeconds();
  const auto start = tClock::now();
  sPicture picture = OpenPicture(pJob.fInput, ChooseSource(pJob));
  report.fReadSeconds = SecondsSince(start) - TakeGateSeconds();
  const bool isStreamed = pMayStream && CanBeStreamed(pJob, picture);
  if (!isStreamed) Load(pJob, picture, report);
  report.fWidth = isStreamed ? picture.fRows->GetWidth() : picture.fBitmap->GetWidth();
  report.fHeight = isStreamed ? picture.fRows->GetHeight() : picture.fBitmap->GetHeight();
  CheckRowLength(pJob.fInput, report.fWidth);
  CheckFits(pJob.fOutput, format, report.fWidth, report.fHeight);
  if (pJob.fMakesFolder) MakeFolder(pJob.fOutput);
  // before the work, so that a place that cannot be written to is told early
  cTempFile file(pJob.fOutput, pJob.fExisting != eExisting::kRefuse);
  cResultPixels result = isStreamed ? RenderStreamed(pJob, picture, report)
                                    : RenderPicture(pJob.fInput, picture, report.fSettings, pJob.fResult,
                                                    pJob.fVerbose, report.fRendering);
  picture.fBitmap.reset();
  TellOfPicture(picture, report);
  // What was decided for this picture is kept, so that it can be repeated.
  report.fSettings.fWrap = report.fRendering.fWrap ? eWrap::kHorizontal : eWrap::kNone;
  const auto rendered = tClock::now();
  LayOverColour(pJob.fResult, picture, result);
  sFinishedPicture finished{std::move(result),
                            std::move(picture.fAlpha),
                            GetIccProfile(pJob.fResult.fColorSpace),
                            picture.fMetadata,
                            ToJson(report.fSettings, pJob.fResult),
                            picture.fIsPremultiplied};
  const std::vector<std::string> leftOut = WritePicture(finished, format, pJob.fResult.fFile, file);
  report.fWarnings.insert(report.fWarnings.end(), leftOut.begin(), leftOut.end());
  report.fWriteSeconds = SecondsSince(rendered);
  return report;
}

sPictureReport Tonemap(const sTonemapJob& pJob) {
  try {
    return Tonemap(pJob, true);
  } catch (const sNeedsWholePicture&) {
    return Tonemap(pJob, false);
  }
}

}  // namespace

eOutputFormat ChooseJobFormat(const sTonemapJob& pJob) {
  const bool isStream = pJob.fOutput == kStandardStream;
  return ChooseOutputFormat(isStream ? "result." + pJob.fStreamFormat : pJob.fOutput, pJob.fResult.fDepth,
                            pJob.fResult.fFile);
}

bool HasTarget(const sTonemapJob& pJob) {
  std::error_code error;
  return pJob.fOutput != kStandardStream && std::filesystem::is_regular_file(pJob.fOutput, error);
}

sPictureReport TonemapPicture(const sTonemapJob& pJob) {
  const cInputFile input(pJob.fInput);
  sTonemapJob job = pJob;
  job.fInput = input.GetPath();
  return input.Read([&] { return Tonemap(job); });
}

}  // namespace Cli
