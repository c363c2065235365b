#include "cli/TonemapPicture.h"

#include <chrono>
#include <filesystem>
#include <utility>

#include "cli/AutoSettings.h"
#include "cli/Failure.h"
#include "cli/MemoryBudget.h"
#include "cli/PictureReader.h"
#include "cli/Preview.h"
#include "cli/SettingsJson.h"
#include "cli/StandardStreams.h"

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
    throw cFailure(eExitCode_CannotWrite, pTarget,
                   "its folder cannot be made (" + error.message() + "); give another --out-dir");
  }
}

sPictureReport Tonemap(const sTonemapJob& pJob) {
  const eOutputFormat format = ChooseJobFormat(pJob);
  if (pJob.fOutput != kStandardStream) CheckIsAnother(pJob.fInput, pJob.fOutput);
  if (pJob.fExisting != eExisting::kReplace && HasTarget(pJob))
    RefuseExisting(pJob.fOutput, ", --skip-existing leaves it as it is");
  sPictureReport report;
  TakeGateSeconds();
  const auto start = tClock::now();
  sPicture picture = ReadPicture(pJob.fInput);
  report.fReadSeconds = SecondsSince(start) - TakeGateSeconds();
  const sPictureStatistics statistics = SamplePicture(picture);
  report.fDynamicRange = statistics.CountPositive() > 0 ? statistics.GetDynamicRange() : 0.0;
  report.fSettings = pJob.fAuto ? SuggestSettings(statistics) : pJob.fSettings;
  Apply(pJob.fChange, report.fSettings);
  const int preview = pJob.fResult.fPreview;
  if (preview > 0) picture = ReducePicture(pJob.fInput, std::move(picture), preview);
  report.fWarnings = picture.fWarnings;
  report.fWidth = picture.fBitmap->GetWidth();
  report.fHeight = picture.fBitmap->GetHeight();
  report.fFormat = picture.fFormat;
  report.fColorSpace = picture.fColorSpace;
  report.fFileDepth = picture.fFileDepth;
  report.fRepairs = picture.fRepairs;
  CheckFits(pJob.fOutput, format, report.fWidth, report.fHeight);
  if (pJob.fMakesFolder) MakeFolder(pJob.fOutput);
  // before the work, so that a place that cannot be written to is told early
  cTempFile file(pJob.fOutput, pJob.fExisting != eExisting::kRefuse);
  cResultPixels result =
      RenderPicture(pJob.fInput, picture, report.fSettings, pJob.fResult, pJob.fVerbose, report.fRendering);
  picture.fBitmap.reset();
  // What was decided for this picture is kept, so that it can be repeated.
  report.fSettings.fWrap = report.fRendering.fWrap ? eWrap::kHorizontal : eWrap::kNone;
  picture.fMetadata.PutSettings(ToJson(report.fSettings, pJob.fResult));
  const auto rendered = tClock::now();
  sFinishedPicture finished{std::move(result), std::move(picture.fAlpha),
                            GetIccProfile(pJob.fResult.fColorSpace), picture.fMetadata};
  const std::vector<std::string> leftOut = WritePicture(finished, format, pJob.fResult.fFile, file);
  report.fWarnings.insert(report.fWarnings.end(), leftOut.begin(), leftOut.end());
  report.fWriteSeconds = SecondsSince(rendered);
  return report;
}

/// Failures name the stream, not the place where its bytes were kept.
sPictureReport TonemapStandardInput(const sTonemapJob& pJob) {
  const cStandardInput input;
  sTonemapJob job = pJob;
  job.fInput = input.GetPath();
  try {
    return Tonemap(job);
  } catch (const cFailure& failure) {
    const std::string text = failure.what();
    if (!text.starts_with(job.fInput + ": ")) throw;
    throw cFailure(failure.GetExitCode(), "standard input", text.substr(job.fInput.size() + 2));
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
  return pJob.fInput == kStandardStream ? TonemapStandardInput(pJob) : Tonemap(pJob);
}

}  // namespace Cli
