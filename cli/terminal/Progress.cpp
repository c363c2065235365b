#include "cli/terminal/Progress.h"

#include <fmt/format.h>

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string_view>

#include "cli/terminal/Console.h"
#include "cli/terminal/Warnings.h"
#include "photo/Json.h"

namespace Tool {
namespace {

constexpr char kRed[] = "\033[31m";
constexpr char kClearLine[] = "\r\033[K";

/// Whether standard error is a terminal that understands control sequences, and nobody asked for plain text.
bool CanColour() {
  const char* const unwanted = std::getenv("NO_COLOR");
  const char* const terminal = std::getenv("TERM");
  return isatty(STDERR_FILENO) != 0 && (unwanted == nullptr || *unwanted == '\0') &&
         (terminal == nullptr || std::string_view(terminal) != "dumb");
}

std::size_t GetColumns() {
  winsize size = {};
  const bool isKnown = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return isKnown ? size.ws_col : 80;
}

std::string TimeToText(double pSeconds) {
  const auto seconds = static_cast<long>(std::min(std::ceil(pSeconds), 1e9));
  if (seconds < 3600) return fmt::format("{}:{:02}", seconds / 60, seconds % 60);
  return fmt::format("{}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

}  // namespace

eProgress ChooseProgress(eProgress pAsked, bool pIsOneNamed) {
  if (pAsked != eProgress::kAuto) return pAsked;
  if (pIsOneNamed) return eProgress::kNone;
  return isatty(STDERR_FILENO) != 0 ? eProgress::kBar : eProgress::kPlain;
}

cProgress::cProgress(eProgress pWay, std::size_t pPictures, const sLeftOut* pLeftOut)
    : fWay(pWay), fHasColour(CanColour()), fPictures(pPictures), fLeftOut(pLeftOut) {}

void cProgress::NoteFolder(const sUnreadableFolder& pFolder) {
  ++fFolders;
  fFailedInputs.push_back(pFolder.fFolder);
  Fail(pFolder.fFolder + ": " + pFolder.fReason);
}

void cProgress::Report(const Photo::sTonemapJob& pJob, const Photo::tPictureRecord& pRecord) {
  const std::string status = pRecord["status"];
  Count(pJob, status);
  if (HasBar()) std::fputs(kClearLine, stderr);
  if (pRecord.contains("warnings")) PrintWarnings(pJob.fInput, pRecord["warnings"]);
  if (status == "failed") Fail(pRecord["error"]["message"].get<std::string>());
  if (fWay == eProgress::kPlain) ReportPlainly(pJob, status);
  if (fWay == eProgress::kJson) PrintMessage(Photo::ToLine(MakeEvent("picture", pJob.fInput)));
}

void cProgress::Fail(const std::string& pMessage) const {
  PrintMessage("quorvane: " + pMessage, fHasColour ? kRed : "");
}

void cProgress::Warn(const std::string& pText) {
  if (HasBar()) std::fputs(kClearLine, stderr);
  PrintMessage("quorvane: warning: " + pText);
}

void cProgress::Count(const Photo::sTonemapJob& pJob, const std::string& pStatus) {
  if (pStatus == "done") ++fDone;
  if (pStatus == "skipped") ++fSkipped;
  if (pStatus != "failed") return;
  ++fFailed;
  fFailedInputs.push_back(pJob.fInput);
}

void cProgress::ReportPlainly(const Photo::sTonemapJob& pJob, const std::string& pStatus) const {
  if (pStatus == "failed") return;
  const std::string what = pStatus == "done" ? pJob.fInput + " -> " + pJob.fOutput : pJob.fOutput + " exists";
  PrintMessage(fmt::format("[{}/{}] ", fDone + fSkipped + fFailed, fPictures) + what);
}

void cProgress::NoteLook(std::size_t pDone, std::size_t pPictures) {
  fStart = std::chrono::steady_clock::now();
  const std::string line = fmt::format("Looking at {} of {}", pDone, pPictures);
  if (HasBar()) {
    std::fprintf(stderr, "%s%s", kClearLine, line.substr(0, GetColumns() - 1).c_str());
    std::fflush(stderr);
  }
  if (fWay == eProgress::kPlain && pDone == pPictures)
    PrintMessage(fmt::format("Looked at {0} of {0}", pPictures));
  if (fWay == eProgress::kJson) {
    PrintMessage(Photo::ToLine({{"event", "look"}, {"pictures", pPictures}, {"looked", pDone}}));
  }
}

void cProgress::Draw() {
  if (!HasBar()) return;
  constexpr std::size_t kCells = 24;
  const std::size_t ended = fDone + fSkipped + fFailed;
  const std::size_t full = fPictures == 0 ? kCells : kCells * ended / fPictures;
  std::string line = fmt::format("{}/{} [", ended, fPictures) + std::string(full, '#') +
                     std::string(kCells - full, '.') + "] " + fmt::format("{:.1f}/s", GetRate());
  if (GetRate() > 0.0) line += ", " + TimeToText(GetSecondsLeft()) + " left";
  if (fFailed > 0) line += fmt::format(", {} failed", fFailed);
  std::fprintf(stderr, "%s%s", kClearLine, line.substr(0, GetColumns() - 1).c_str());
  std::fflush(stderr);
}

void cProgress::Finish() {
  if (HasBar()) std::fputs(kClearLine, stderr);
  if (fWay == eProgress::kNone) return;
  if (fWay == eProgress::kJson) return PrintMessage(Photo::ToLine(MakeSummary()));
  if (fPictures == 1 && fFailed == 1 && fLeftOut == nullptr) return;  // reported already
  PrintMessage(Summarise());
  constexpr std::size_t kMost = 20;
  for (std::size_t i = 0; i < std::min(kMost, fFailedInputs.size()); ++i)
    PrintMessage("  failed: " + fFailedInputs[i]);
  if (fFailedInputs.size() > kMost) PrintMessage(fmt::format("  and {} more", fFailedInputs.size() - kMost));
}

void cProgress::Interrupt(Photo::eExisting pExisting) {
  if (fPictures == 1) {
    return PrintMessage("quorvane: interrupted; the result was not written: run the same command again");
  }
  if (HasBar()) std::fputs(kClearLine, stderr);
  const char* const instead = pExisting == Photo::eExisting::kReplace ? " in place of --overwrite" : "";
  PrintMessage("quorvane: interrupted: " + Summarise());
  PrintMessage(std::string("To go on, run the same command with --skip-existing") + instead + ".");
}

std::string cProgress::Summarise() const {
  const std::string leftOut = fLeftOut != nullptr ? DescribeLeftOut(*fLeftOut) : "";
  const std::string end = leftOut.empty() ? "" : "; left out: " + leftOut;
  const std::string folders =
      fFolders > 0 ? fmt::format(", {} folder{} not read", fFolders, fFolders > 1 ? "s" : "") : "";
  if (fPictures == 0) return "no pictures" + folders + end;
  std::string text = fmt::format("{} of {} pictures done", fDone, fPictures);
  if (fSkipped > 0) text += fmt::format(", {} skipped as they exist", fSkipped);
  if (fFailed > 0) text += fmt::format(", {} failed", fFailed);
  const std::size_t ended = fDone + fSkipped + fFailed;
  if (ended < fPictures) text += fmt::format(", {} not begun or not ended", fPictures - ended);
  return text + folders + fmt::format(" in {:.1f} s ({:.2f} a second)", GetSeconds(), GetRate()) + end;
}

Photo::tPictureRecord cProgress::MakeSummary() const {
  Photo::tPictureRecord summary = MakeEvent("summary");
  if (fLeftOut == nullptr) return summary;
  summary["unreadable_folders"] = fFolders;
  summary["left_out"] = {{"unknown", fLeftOut->fUnknown},
                         {"hidden", fLeftOut->fHidden},
                         {"links", fLeftOut->fLinks},
                         {"special", fLeftOut->fSpecial}};
  return summary;
}

Photo::tPictureRecord cProgress::MakeEvent(const char* pEvent, const std::string& pInput) const {
  Photo::tPictureRecord event = {{"event", pEvent}};
  if (!pInput.empty()) Photo::PutName(event, "input", pInput);
  event["pictures"] = fPictures;
  event["done"] = fDone;
  event["skipped"] = fSkipped;
  event["failed"] = fFailed;
  event["seconds"] = GetSeconds();
  event["rate"] = GetRate();
  event["seconds_left"] = GetSecondsLeft();
  return event;
}

double cProgress::GetSeconds() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - fStart).count();
}

/// Pictures that took work, a second.
double cProgress::GetRate() const {
  return static_cast<double>(fDone + fFailed) / std::max(GetSeconds(), 1e-3);
}

double cProgress::GetSecondsLeft() const {
  const std::size_t left = fPictures - fDone - fSkipped - fFailed;
  return GetRate() > 0.0 ? static_cast<double>(left) / GetRate() : 0.0;
}

}  // namespace Tool
