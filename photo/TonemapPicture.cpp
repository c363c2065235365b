#include "photo/TonemapPicture.h"

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include "photo/SettingsJson.h"
#include "photo/base/Failure.h"
#include "photo/decode/PictureReader.h"
#include "photo/icc/NamedProfile.h"
#include "photo/picture/Alpha.h"
#include "photo/picture/PictureSource.h"
#include "photo/picture/Preview.h"
#include "photo/picture/ResultAlpha.h"
#include "photo/render/AutoSettings.h"
#include "photo/render/ChooseWrap.h"

namespace Photo {
namespace {

using tClock = std::chrono::steady_clock;

double SecondsSince(tClock::time_point pStart) {
  return std::chrono::duration<double>(tClock::now() - pStart).count();
}

bool IsForStream(const sTonemapJob& pJob) {
  return pJob.fOutputStream != cTempFile::kNoStream;
}

/// The folder of a target, and those above it.
void MakeFolder(const std::string& pTarget) {
  const std::filesystem::path folder = std::filesystem::path(pTarget).parent_path();
  std::error_code error;
  if (!folder.empty()) std::filesystem::create_directories(folder, error);
  if (error) {
    throw cFailure(eFailure::kCannotWrite,
                   "its folder cannot be made (" + error.message() + "); give another {out-dir}");
  }
}

sSettings GetGivenSettings(const sTonemapJob& pJob) {
  sSettings settings = pJob.fSettings;
  Apply(pJob.fChange, settings);
  return settings;
}

sRendering MakeRendering(const sTonemapJob& pJob, const sSettings& pSettings) {
  const sOutputOptions& result = pJob.fResult;
  return {pSettings, result.fDepth, result.fDithers, result.fColorSpace, pJob.fVerbose, pJob.fWatch};
}

/// A picture on its way from file to file.
struct sWork {
  sPictureInfo fInfo;
  std::optional<cResultPixels> fPixels;
  std::vector<std::uint16_t> fAlpha;  ///< As in sPicture.
};

/// Waiting for memory is no part of reading.
sOpenedPicture Open(const sTonemapJob& pJob, const tMemoryGate& pGate, sPictureReport& pReport) {
  double waited = 0.0;
  const auto start = tClock::now();
  sOpenedPicture opened = OpenPicture(pJob.fInput, ChooseSource(pJob), [&](std::int64_t pPixels) {
    const auto asked = tClock::now();
    if (pGate) pGate(pPixels);
    waited = SecondsSince(asked);
  });
  pReport.fReadSeconds += SecondsSince(start) - waited;
  return opened;
}

/// Whether the first row can be worked on before the last one is known.
bool CanBeStreamed(const sTonemapJob& pJob, const sOpenedPicture& pOpened) {
  const cPictureRows& rows = *pOpened.fRows;
  const bool isLookedAtBefore = pJob.fAuto || pJob.fResult.fPreview > 0;
  if (rows.HasAlpha() || isLookedAtBefore) return false;
  return !MayWrap(GetGivenSettings(pJob).fWrap, pOpened.fIsPanorama, rows.GetWidth(), rows.GetHeight());
}

void ReportRange(const sPictureStatistics& pStatistics, sPictureReport& pReport) {
  pReport.fDynamicRange = pStatistics.CountPositive() > 0 ? pStatistics.GetDynamicRange() : 0.0;
}

/// Reads the pixels, which uses up pOpened, and does what is done before the engine's work.
sPicture Load(const sTonemapJob& pJob, sOpenedPicture& pOpened, sPictureReport& pReport) {
  const auto start = tClock::now();
  sPicture picture = LoadPicture(std::move(pOpened), pJob.fWatch);
  SettleAlpha(picture);
  pReport.fReadSeconds += SecondsSince(start);
  const sPictureStatistics statistics = SamplePicture(picture);
  ReportRange(statistics, pReport);
  if (pJob.fAuto) {
    pReport.fSettings = SuggestSettings(statistics);
    Apply(pJob.fChange, pReport.fSettings);
  }
  pReport.fRepairs = picture.fRepairs;
  if (pJob.fResult.fPreview > 0) return ReducePicture(std::move(picture), pJob.fResult.fPreview);
  return picture;
}

void RenderLoaded(const sTonemapJob& pJob, sPicture pPicture, sPictureReport& pReport, sWork& pWork) {
  pWork.fPixels = RenderPicture(pPicture, MakeRendering(pJob, pReport.fSettings), pReport.fRendering);
  pWork.fAlpha = std::move(pPicture.fAlpha);
  pWork.fInfo = std::move(pPicture);
}

/// The engine's preparation asks for the rows: reading them is no part of its time. Uses up pOpened. Leaves
/// pWork without pixels when the rows turn out to depend on each other.
void RenderStreamed(const sTonemapJob& pJob, sOpenedPicture& pOpened, sPictureReport& pReport, sWork& pWork) {
  const std::unique_ptr<cPictureRows> rows = std::move(pOpened.fRows);
  cPictureSource source(*rows, pJob.fWatch);
  pWork.fPixels = RenderSource(source, MakeRendering(pJob, pReport.fSettings), pReport.fRendering);
  pReport.fReadSeconds += source.GetSeconds();
  if (!pWork.fPixels) return;
  pReport.fRendering.fSeconds.fPreparation -= source.GetSeconds();
  pReport.fRepairs = *source.GetRepairs();
  ReportRange(source.GetSample(), pReport);
  WarnOfRepairs(pReport.fRepairs, pOpened.fWarnings);
  pWork.fInfo = std::move(pOpened);
}

/// Does nothing for opaque pictures.
void LayOverColour(const sOutputOptions& pOptions, sWork& pWork) {
  if (pOptions.fAlpha.fMode != eAlpha::kColour || pWork.fAlpha.empty()) return;
  LayOver(pOptions.fAlpha.fColour, pOptions.fColorSpace, pWork.fInfo.fIsPremultiplied, pWork.fAlpha,
          *pWork.fPixels);
  pWork.fAlpha.clear();
}

void ReportInfo(const sPictureInfo& pInfo, sPictureReport& pReport) {
  pReport.fFormat = pInfo.fFormat;
  pReport.fColorSpace = pInfo.fColorSpace;
  pReport.fFileDepth = pInfo.fFileDepth;
  pReport.fWarnings = pInfo.fWarnings;
}

void Write(const sTonemapJob& pJob, sWork pWork, eOutputFormat pFormat, cTempFile& pFile,
           sPictureReport& pReport) {
  const auto start = tClock::now();
  LayOverColour(pJob.fResult, pWork);
  sFinishedPicture finished{std::move(*pWork.fPixels),
                            std::move(pWork.fAlpha),
                            GetIccProfile(pJob.fResult.fColorSpace),
                            pWork.fInfo.fMetadata,
                            ToJson(pReport.fSettings, pJob.fResult),
                            pWork.fInfo.fIsPremultiplied};
  const std::vector<std::string> leftOut =
      WritePicture(finished, pFormat, pJob.fResult.fFile, pFile, pJob.fWatch);
  pReport.fWarnings.insert(pReport.fWarnings.end(), leftOut.begin(), leftOut.end());
  pReport.fWriteSeconds = SecondsSince(start);
}

eOutputFormat CheckTarget(const sTonemapJob& pJob) {
  const eOutputFormat format = ChooseJobFormat(pJob);
  NameFile(pJob.fOutput, [&] {
    CheckDither(pJob.fResult);
    if (!IsForStream(pJob)) CheckIsAnother(pJob.fInput, pJob.fOutput);
    if (pJob.fExisting != eExisting::kReplace && HasTarget(pJob))
      RefuseExisting(", {skip-existing} leaves it as it is");
  });
  return format;
}

cTempFile PrepareTarget(const sTonemapJob& pJob, eOutputFormat pFormat, const sPictureReport& pReport) {
  CheckFits(pFormat, pReport.fWidth, pReport.fHeight);
  if (pJob.fMakesFolder) MakeFolder(pJob.fOutput);
  return OpenTarget(pJob.fOutput, pJob.fExisting != eExisting::kRefuse, pJob.fOutputStream);
}

sPictureReport Tonemap(const sTonemapJob& pJob) {
  const eOutputFormat format = CheckTarget(pJob);
  sPictureReport report;
  report.fSettings = GetGivenSettings(pJob);
  sOpenedPicture opened = Open(pJob, pJob.fMemoryGate, report);
  report.fWidth = opened.fRows->GetWidth();
  report.fHeight = opened.fRows->GetHeight();
  std::optional<sPicture> loaded;
  if (!CanBeStreamed(pJob, opened)) {
    loaded = Load(pJob, opened, report);
    report.fWidth = loaded->fBitmap->GetWidth();  // of a preview
    report.fHeight = loaded->fBitmap->GetHeight();
  }
  CheckRowLength(report.fWidth);
  // before the work, so that a place that cannot be written to is reported early
  cTempFile file = NameFile(pJob.fOutput, [&] { return PrepareTarget(pJob, format, report); });
  sWork work;
  if (!loaded) {
    RenderStreamed(pJob, opened, report, work);
    if (!work.fPixels) {
      if (pJob.fWatch != nullptr) pJob.fWatch->Resume();
      opened = Open(pJob, {}, report);  // its memory is granted
      loaded = Load(pJob, opened, report);
    }
  }
  if (loaded) RenderLoaded(pJob, std::move(*loaded), report, work);
  ReportInfo(work.fInfo, report);
  // What was decided for this picture is kept, so that it can be repeated.
  report.fSettings.fWrap = report.fRendering.fWrap ? eWrap::kHorizontal : eWrap::kNone;
  NameFile(pJob.fOutput, [&] { Write(pJob, std::move(work), format, file, report); });
  return report;
}

}  // namespace

eOutputFormat ChooseJobFormat(const sTonemapJob& pJob) {
  const std::string name = IsForStream(pJob) ? "result." + pJob.fStreamFormat : pJob.fOutput;
  return NameFile(name, [&] { return ChooseOutputFormat(name, pJob.fResult.fDepth, pJob.fResult.fFile); });
}

void CheckDither(const sOutputOptions& pResult) {
  if (!pResult.fDithers || pResult.fDepth == 8) return;
  throw cFailure(eFailure::kUsage, "a result of " + std::to_string(pResult.fDepth) +
                                       " bits is not dithered; leave out {dither}, or use {depth} 8");
}

sPictureChoice ChooseSource(const sTonemapJob& pJob) {
  sPictureChoice choice = pJob.fSource;
  choice.fIgnoresAlpha = pJob.fResult.fAlpha.fMode == eAlpha::kIgnore;
  return choice;
}

bool HasTarget(const sTonemapJob& pJob) {
  std::error_code error;
  return !IsForStream(pJob) && std::filesystem::is_regular_file(pJob.fOutput, error);
}

sPictureReport TonemapPicture(const sTonemapJob& pJob) {
  return NameFile(pJob.fInput, [&] { return Tonemap(pJob); });
}

}  // namespace Photo
