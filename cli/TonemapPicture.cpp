#include "cli/TonemapPicture.h"

#include <chrono>

#include "cli/PictureReader.h"
#include "cli/PictureWriter.h"

namespace Cli {
namespace {

using tClock = std::chrono::steady_clock;

double SecondsSince(tClock::time_point pStart) {
  return std::chrono::duration<double>(tClock::now() - pStart).count();
}

}  // namespace

sPictureReport TonemapPicture(const sTonemapJob& pJob) {
  const eOutputFormat format = ChooseOutputFormat(pJob.fOutput, pJob.fResult.fDepth);
  CheckIsAnother(pJob.fInput, pJob.fOutput);
  sPictureReport report;
  report.fSettings = pJob.fSettings;
  const auto start = tClock::now();
  sPicture picture = ReadPicture(pJob.fInput);
  report.fReadSeconds = SecondsSince(start);
  report.fWarnings = picture.fWarnings;
  report.fWidth = picture.fBitmap->GetWidth();
  report.fHeight = picture.fBitmap->GetHeight();
  report.fFormat = picture.fFormat;
  report.fColorSpace = picture.fColorSpace;
  report.fFileDepth = picture.fFileDepth;
  report.fRepairs = picture.fRepairs;
  cTempFile file(pJob.fOutput);  // before the work, so that a place that cannot be written to is told early
  const auto result =
      RenderPicture(pJob.fInput, picture, pJob.fSettings, pJob.fResult, pJob.fVerbose, report.fRendering);
  picture.fBitmap.reset();
  const auto rendered = tClock::now();
  WritePicture(*result, GetIccProfile(pJob.fResult.fColorSpace), picture.fMetadata, format, file);
  report.fWriteSeconds = SecondsSince(rendered);
  return report;
}

}  // namespace Cli
