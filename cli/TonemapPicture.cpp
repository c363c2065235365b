#include "cli/TonemapPicture.h"

#include <chrono>
#include <utility>

#include "cli/AutoSettings.h"
#include "cli/PictureReader.h"
#include "cli/PictureWriter.h"
#include "cli/Preview.h"
#include "cli/SettingsJson.h"

namespace Cli {
namespace {

using tClock = std::chrono::steady_clock;

double SecondsSince(tClock::time_point pStart) {
  return std::chrono::duration<double>(tClock::now() - pStart).count();
}

}  // namespace

sPictureReport TonemapPicture(const sTonemapJob& pJob) {
  const eOutputFormat format = ChooseOutputFormat(pJob.fOutput, pJob.fResult.fDepth, pJob.fResult.fFile);
  CheckIsAnother(pJob.fInput, pJob.fOutput);
  sPictureReport report;
  const auto start = tClock::now();
  sPicture picture = ReadPicture(pJob.fInput);
  report.fReadSeconds = SecondsSince(start);
  report.fSettings = pJob.fAuto ? SuggestSettings(picture) : pJob.fSettings;
  Apply(pJob.fChange, report.fSettings);
  if (pJob.fPreview > 0) picture = ReducePicture(pJob.fInput, std::move(picture), pJob.fPreview);
  report.fWarnings = picture.fWarnings;
  report.fWidth = picture.fBitmap->GetWidth();
  report.fHeight = picture.fBitmap->GetHeight();
  report.fFormat = picture.fFormat;
  report.fColorSpace = picture.fColorSpace;
  report.fFileDepth = picture.fFileDepth;
  report.fRepairs = picture.fRepairs;
  CheckFits(pJob.fOutput, format, report.fWidth, report.fHeight);
  cTempFile file(pJob.fOutput);  // before the work, so that a place that cannot be written to is told early
  const auto result =
      RenderPicture(pJob.fInput, picture, report.fSettings, pJob.fResult, pJob.fVerbose, report.fRendering);
  picture.fBitmap.reset();
  // What was decided for this picture is kept, so that it can be repeated.
  report.fSettings.fWrap = report.fRendering.fWrap ? eWrap::kHorizontal : eWrap::kNone;
  picture.fMetadata.PutSettings(ToJson(report.fSettings, pJob.fResult));
  const auto rendered = tClock::now();
  sFinishedPicture finished{result.get(), std::move(picture.fAlpha), GetIccProfile(pJob.fResult.fColorSpace),
                            picture.fMetadata};
  const std::vector<std::string> leftOut = WritePicture(finished, format, pJob.fResult.fFile, file);
  report.fWarnings.insert(report.fWarnings.end(), leftOut.begin(), leftOut.end());
  report.fWriteSeconds = SecondsSince(rendered);
  return report;
}

}  // namespace Cli
