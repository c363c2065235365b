#include "cli/terminal/TextHistogram.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace Tool {
namespace {

struct sLine {
  double fEdge;  ///< Where it begins, or, for the rest, where it ends.
  double fPerCent;
  bool fIsRest;  ///< Whatever lies below its edge.
};

/// The least step that leaves at most 20 lines.
double ChooseStep(double pDecades) {
  constexpr int kLines = 20;
  for (const double step : {0.1, 0.2, 0.25, 0.5, 1.0, 2.0}) {
    if (pDecades / step <= kLines - 1) return step;
  }
  return 5.0;
}

std::vector<sLine> MakeLines(const Photo::sPictureStatistics& pStatistics) {
  const double lowest = std::max(pStatistics.GetQuantile(0.0005), pStatistics.fLogMin);
  const double step = ChooseStep(pStatistics.fLogMax - lowest);
  std::vector<sLine> lines;
  double above = 0.0;
  for (double from = std::floor(pStatistics.fLogMax / step) * step;; from -= step) {
    const bool isLast = from <= lowest;
    const bool isRest = isLast && pStatistics.fLogMin < from;
    const double share = isLast ? 1.0 : pStatistics.GetShareAbove(from);
    lines.push_back({isRest ? from + step : from, 100.0 * (share - above), isRest});
    above = share;
    if (isLast) return lines;
  }
}

/// A bar of pLength columns, to an eighth of one where the terminal can show it.
std::string DrawBar(double pLength, bool pIsUtf8) {
  static constexpr const char* kEighths[] = {"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
  const int eighths = static_cast<int>(std::lround(8.0 * pLength));
  std::string bar;
  for (int i = 0; i < eighths / 8; ++i) bar += pIsUtf8 ? "█" : "#";
  if (pIsUtf8) return bar + kEighths[eighths % 8];
  return eighths % 8 >= 4 ? bar + "#" : bar;
}

}  // namespace

std::string DrawTextHistogram(const Photo::sPictureStatistics& pStatistics, const sTerminal& pTerminal) {
  if (pStatistics.CountPositive() == 0) return "";
  const std::vector<sLine> lines = MakeLines(pStatistics);
  double highest = 0.0;
  for (const sLine& line : lines) highest = std::max(highest, line.fPerCent);
  constexpr int kRoomForNumbers = 22;
  const double perColumn = highest / (pTerminal.fWidth - kRoomForNumbers);
  std::string text;
  for (const sLine& line : lines) {
    const std::string bar = DrawBar(line.fPerCent / perColumn, pTerminal.fIsUtf8);
    text += fmt::format("  {}{:7.2f} ", line.fIsRest ? "<" : " ", line.fEdge);
    text += (pTerminal.fIsUtf8 ? "│" : "|") + (pTerminal.fHasColor ? "\033[36m" + bar + "\033[0m" : bar);
    text += fmt::format(" {:.1f} %\n", line.fPerCent);
  }
  return text;
}

}  // namespace Tool
