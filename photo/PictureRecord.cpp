#include "photo/PictureRecord.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "photo/Json.h"
#include "photo/Printable.h"
#include "photo/base/Failure.h"
#include "photo/base/ShortText.h"
#include "photo/render/ColorSpaceName.h"

namespace Photo {
namespace {

/// The number that people typed: 0.1, not 0.10000000149.
double ToNumber(float pNumber) {
  return std::strtod(ToText(pNumber).c_str(), nullptr);
}

std::string GetSpaceName(TmEngine::eColorSpaceID pSpace) {
  for (const sColorSpaceName& name : kColorSpaceNames) {
    if (name.fColorSpace == pSpace) return name.fName;
  }
  return "";
}

tPictureRecord MakeRecord(const sTonemapJob& pJob, const char* pStatus) {
  tPictureRecord record;
  PutName(record, "input", pJob.fInput);
  PutName(record, "output", pJob.fOutput);
  record["status"] = pStatus;
  return record;
}

tPictureRecord MakeSettings(const sSettings& pSettings) {
  tPictureRecord settings;
  for (const sSlider& slider : GetSliders()) settings[slider.fName] = ToNumber(pSettings.*slider.fField);
  settings["wrap"] = GetWrapName(pSettings.fWrap);
  settings["rendering"] = GetRenderingName(pSettings.fRendering);
  return settings;
}

tPictureRecord MakeLook(const TmEngine::sCommonLook& pLook) {
  tPictureRecord look = {{"black_point", ToNumber(pLook.fPoints->fBlack)},
                         {"white_point", ToNumber(pLook.fPoints->fWhite)}};
  if (pLook.fMeans) {
    look["base_mean"] = ToNumber(pLook.fMeans->fBase);
    look["detail_mean"] = ToNumber(pLook.fMeans->fDetail);
  }
  return look;
}

tPictureRecord MakeMilliseconds(const sPictureReport& pReport) {
  const TmEngine::sStageSeconds& stages = pReport.fRendering.fSeconds;
  const auto milliseconds = [](double pSeconds) {
    return std::round(pSeconds * 1e6) / 1e3;  // to the microsecond
  };
  return {{"read", milliseconds(pReport.fReadSeconds)},
          {"preparation", milliseconds(stages.fPreparation)},
          {"phase1", milliseconds(stages.fPhase1)},
          {"phase2", milliseconds(stages.fPhase2)},
          {"final_rendering", milliseconds(stages.fFinalRendering)},
          {"write", milliseconds(pReport.fWriteSeconds)}};
}

/// No more than anybody reads: metadata can be damaged in thousands of ways at once.
std::vector<std::string> ShortenWarnings(const std::vector<std::string>& pWarnings) {
  constexpr std::size_t kMost = 100;
  std::vector<std::string> warnings;
  for (std::size_t i = 0; i < std::min(kMost, pWarnings.size()); ++i)
    warnings.push_back(Shorten(pWarnings[i]));
  if (pWarnings.size() > kMost) {
    warnings.push_back("and " + std::to_string(pWarnings.size() - kMost) + " more warnings");
  }
  return warnings;
}

}  // namespace

tPictureRecord MakeDoneRecord(const sTonemapJob& pJob, const sPictureReport& pReport,
                              std::int64_t pPeakMemory) {
  const sRenderingReport& rendering = pReport.fRendering;
  const sRepairs& repairs = pReport.fRepairs;
  tPictureRecord record = MakeRecord(pJob, "done");
  record["width"] = pReport.fWidth;
  record["height"] = pReport.fHeight;
  record["format"] = pReport.fFormat;
  record["depth"] = pReport.fFileDepth;
  record["color_space"] = Shorten(pReport.fColorSpace);
  record["result"] = {{"depth", pJob.fResult.fDepth},
                      {"dither", pJob.fResult.fDithers},
                      {"color_space", GetSpaceName(pJob.fResult.fColorSpace)}};
  record["settings"] = MakeSettings(pReport.fSettings);
  if (pReport.fSettings.fLook) record["look"] = MakeLook(*pReport.fSettings.fLook);
  record["wrap"] = rendering.fWrap;
  record["dynamic_range"] = pReport.fDynamicRange;
  record["black_point"] = rendering.fBlack;
  record["white_point"] = rendering.fWhite;
  record["black_share"] = rendering.fBlackShare;
  record["white_share"] = rendering.fWhiteShare;
  record["repaired"] = {{"nan", repairs.fNaN},
                        {"infinite", repairs.fInfinite},
                        {"outliers", repairs.fOutliers},
                        {"negative", repairs.fNegative}};
  record["milliseconds"] = MakeMilliseconds(pReport);
  record["peak_memory"] = pPeakMemory;
  record["warnings"] = ToPrintable(ShortenWarnings(pReport.fWarnings));
  return record;
}

tPictureRecord MakeSkippedRecord(const sTonemapJob& pJob) {
  return MakeRecord(pJob, "skipped");
}

tPictureRecord MakeFailedRecord(const sTonemapJob& pJob, eFailure pKind, const std::string& pMessage) {
  tPictureRecord record = MakeRecord(pJob, "failed");
  record["error"] = {{"code", static_cast<int>(pKind)}, {"message", ToPrintable(pMessage)}};
  return record;
}

}  // namespace Photo
