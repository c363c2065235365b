#include "cli/plot/TonePlot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "cli/plot/SvgDrawing.h"
#include "engine/math/cVector.h"

namespace Tool {
namespace {

// The drawing's measures, in its own units.
constexpr int kWidth = 1240;
constexpr int kHeight = 920;
constexpr double kPanelWidth = 480.0;
constexpr double kPanelHeight = 300.0;

constexpr char kInputColor[] = "#5b6770";
constexpr char kCurveColor[] = "#0b6e99";

struct sSpan {
  double fFrom;
  double fTo;
};

/// With room for a curve that is level.
sSpan Widen(sSpan pSpan, double pLeast) {
  const double missing = std::max(pLeast - (pSpan.fTo - pSpan.fFrom), 0.0);
  return {pSpan.fFrom - missing / 2.0, pSpan.fTo + missing / 2.0};
}

/// The least of 1, 2 and 5 times a power of ten that parts pLength into at most pParts.
double ChooseStep(double pLength, int pParts) {
  const double least = pLength / pParts;
  const double power = std::pow(10.0, std::floor(std::log10(least)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= least) return factor * power;
  }
  return 10.0 * power;
}

/// One of the four fields.
struct sPanel {
  sAxis fX;
  sAxis fY;

  static sPanel At(int pColumn, int pRow, sSpan pX, sSpan pY) {
    const double left = 90.0 + pColumn * (kPanelWidth + 110.0);
    const double top = 128.0 + pRow * (kPanelHeight + 120.0);
    return {{pX.fFrom, pX.fTo, left, left + kPanelWidth}, {pY.fFrom, pY.fTo, top + kPanelHeight, top}};
  }
  double Middle() const { return (fX.fStart + fX.fEnd) / 2.0; }
};

struct sPanelTexts {
  const char* fTitle;
  const char* fX;
  const char* fY;
};

std::string TickText(double pValue, double pStep) {
  const double value = std::fabs(pValue) < pStep / 2.0 ? 0.0 : pValue;
  return fmt::format("{}{:g}", value < 0.0 ? "−" : "", std::fabs(std::round(value / pStep) * pStep));
}

/// The multiples of pStep on the axis.
std::vector<double> TicksOf(const sAxis& pAxis, double pStep) {
  std::vector<double> ticks;
  const auto last = static_cast<int>(std::floor(pAxis.fTo / pStep + 1e-6));
  for (auto i = static_cast<int>(std::ceil(pAxis.fFrom / pStep)); i <= last; ++i) ticks.push_back(i * pStep);
  return ticks;
}

void AddAxes(cSvgDrawing& pSvg, const sPanel& pPanel, const sPanelTexts& pTexts) {
  const auto [x, y] = pPanel;
  const double stepX = ChooseStep(x.fTo - x.fFrom, 9);
  for (const double value : TicksOf(x, stepX)) {
    pSvg.AddLine(x.At(value), y.fStart, x.At(value), y.fEnd, "class=\"grid\"");
    pSvg.AddText(x.At(value), y.fStart + 19.0, "class=\"tick\"", TickText(value, stepX));
  }
  const double stepY = ChooseStep(y.fTo - y.fFrom, 7);
  for (const double value : TicksOf(y, stepY)) {
    pSvg.AddLine(x.fStart, y.At(value), x.fEnd, y.At(value), "class=\"grid\"");
    pSvg.AddText(x.fStart - 8.0, y.At(value) + 4.5, "class=\"tick left\"", TickText(value, stepY));
  }
  pSvg.AddLine(x.fStart, y.fStart, x.fEnd, y.fStart, "class=\"neutral\"");
  pSvg.AddLine(x.fStart, y.fStart, x.fStart, y.fEnd, "class=\"neutral\"");
  pSvg.AddText(x.fStart, y.fEnd - 14.0, "class=\"heading\"", pTexts.fTitle);
  pSvg.AddText(pPanel.Middle(), y.fStart + 44.0, "class=\"label\"", pTexts.fX);
  pSvg.AddTurnedText(x.fStart - 54.0, (y.fStart + y.fEnd) / 2.0, pTexts.fY);
}

using tPoints = std::vector<std::pair<double, double>>;

/// What leaves the field is cut off.
void AddCurve(cSvgDrawing& pSvg, const sPanel& pPanel, const tPoints& pPoints, const char* pLook) {
  const auto [x, y] = pPanel;
  pSvg.Add("<svg x=\"{:.1f}\" y=\"{:.1f}\" width=\"{:.1f}\" height=\"{:.1f}\"><polyline {} points=\"",
           x.fStart, y.fEnd - 2.0, x.fEnd - x.fStart, y.fStart - y.fEnd + 4.0, pLook);
  for (const auto& [atX, atY] : pPoints) {
    const double clamped = std::clamp(atY, 3.0 * y.fFrom - 2.0 * y.fTo, 3.0 * y.fTo - 2.0 * y.fFrom);
    pSvg.Add("{:.2f},{:.2f} ", x.At(atX) - x.fStart, y.At(clamped) - y.fEnd + 2.0);
  }
  pSvg.Add("\"/></svg>\n");
}

void AddResultCurve(cSvgDrawing& pSvg, const sPanel& pPanel, const tPoints& pPoints) {
  AddCurve(pSvg, pPanel, pPoints, fmt::format("class=\"curve\" stroke=\"{}\"", kCurveColor).c_str());
}

/// The line of what stays as it is.
void AddDiagonal(cSvgDrawing& pSvg, const sPanel& pPanel) {
  const sAxis& x = pPanel.fX;
  AddCurve(pSvg, pPanel, {{x.fFrom, x.fFrom}, {x.fTo, x.fTo}},
           "class=\"curve\" style=\"stroke-width:1.4\" stroke=\"#999\" stroke-dasharray=\"6 5\"");
}

void AddKey(cSvgDrawing& pSvg, const sPanel& pPanel, const char* pText) {
  const double y = pPanel.fY.fEnd + 22.0;
  pSvg.AddLine(pPanel.fX.fStart + 14.0, y - 4.0, pPanel.fX.fStart + 46.0, y - 4.0,
               "stroke=\"#999\" stroke-width=\"1.4\" stroke-dasharray=\"6 5\"");
  pSvg.AddText(pPanel.fX.fStart + 53.0, y, "class=\"note start\"", pText);
}

/// The luminances that are drawn: all but outliers in the dark.
sSpan SpanOfLight(const Photo::sPictureStatistics& pStatistics) {
  const double from = std::max(pStatistics.GetQuantile(0.0005) - 0.3, pStatistics.fLogMin);
  return Widen({std::floor(from * 2.0) / 2.0, std::ceil(pStatistics.fLogMax * 2.0) / 2.0}, 1.0);
}

constexpr double kDecadesPerBar = 0.1;

/// Per cent of the pixels in each bar.
std::vector<double> MakeBars(const Photo::sPictureStatistics& pStatistics, sSpan pSpan) {
  std::vector<double> bars;
  const long count = std::lround((pSpan.fTo - pSpan.fFrom) / kDecadesPerBar);
  for (long i = 0; i < count; ++i) {
    const double log = pSpan.fFrom + kDecadesPerBar * static_cast<double>(i);
    const double share = pStatistics.GetShareAbove(log) - pStatistics.GetShareAbove(log + kDecadesPerBar);
    bars.push_back(100.0 * share);
  }
  return bars;
}

void AddMark(cSvgDrawing& pSvg, const sPanel& pPanel, double pLog, const char* pAlign, const char* pText) {
  const double x = pPanel.fX.At(pLog);
  pSvg.AddLine(x, pPanel.fY.fStart, x, pPanel.fY.fEnd, "stroke=\"#c0392b\" stroke-dasharray=\"4 3\"");
  const bool isLeft = pAlign[0] == 'l';
  pSvg.AddText(x + (isLeft ? -5.0 : 5.0), pPanel.fY.fEnd + 12.0,
               isLeft ? "class=\"note left\"" : "class=\"note start\"", pText);
}

void AddHistogram(cSvgDrawing& pSvg, const Photo::sPictureStatistics& pStatistics, sSpan pLight) {
  const std::vector<double> bars = MakeBars(pStatistics, pLight);
  const double highest = std::max(*std::max_element(bars.begin(), bars.end()), 0.1);
  const sPanel panel = sPanel::At(0, 0, pLight, {0.0, highest * 1.12});
  AddAxes(pSvg, panel,
          {"Luminance of the picture", "log₁₀ of luminance (decades; 0 is the file's white)",
           "Pixels (% per 0.1 decade)"});
  for (std::size_t i = 0; i < bars.size(); ++i) {
    const double left = panel.fX.At(pLight.fFrom + kDecadesPerBar * static_cast<double>(i));
    const double right = panel.fX.At(pLight.fFrom + kDecadesPerBar * static_cast<double>(i + 1));
    const double top = panel.fY.At(bars[i]);
    pSvg.Add("<rect x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\" fill=\"{}\"/>\n", left + 0.4,
             top, right - left - 0.8, panel.fY.fStart - top, kInputColor);
  }
  if (pStatistics.CountPositive() == 0) return;
  AddMark(pSvg, panel, pStatistics.GetQuantile(0.01), "left", "1 %");
  AddMark(pSvg, panel, pStatistics.fLogMean, "start", "mean");
  AddMark(pSvg, panel, pStatistics.GetQuantile(0.999), "start", "99.9 %");
}

/// A layer's table in logarithms, over the part of its range that is drawn.
tPoints TakeTable(const float* pTable, sSpan pRange, sSpan pDrawn) {
  constexpr int kPoints = 480;
  tPoints points;
  for (int i = 0; i <= kPoints; ++i) {
    const double x = std::lerp(std::max(pRange.fFrom, pDrawn.fFrom), std::min(pRange.fTo, pDrawn.fTo),
                               static_cast<double>(i) / kPoints);
    const double index =
        (x - pRange.fFrom) / std::max(pRange.fTo - pRange.fFrom, 1e-9) * (TmEngine::kTableSize - 1);
    const auto value =
        static_cast<double>(pTable[static_cast<int>(std::clamp(index, 0.0, TmEngine::kTableSize - 1.0))]);
    points.emplace_back(x, std::log10(std::max(value, 1e-38)));
  }
  return points;
}

sSpan SpanOfValues(const tPoints& pPoints) {
  const auto [low, high] = std::minmax_element(
      pPoints.begin(), pPoints.end(), [](const auto& pA, const auto& pB) { return pA.second < pB.second; });
  return Widen({std::floor(low->second * 5.0) / 5.0, std::ceil(high->second * 5.0) / 5.0}, 0.4);
}

void AddLayer(cSvgDrawing& pSvg, int pColumn, int pRow, const float* pTable, sSpan pRange, sSpan pDrawn,
              const sPanelTexts& pTexts) {
  const tPoints points = TakeTable(pTable, pRange, pDrawn);
  const sPanel panel = sPanel::At(pColumn, pRow, pDrawn, SpanOfValues(points));
  AddAxes(pSvg, panel, pTexts);
  AddDiagonal(pSvg, panel);
  AddResultCurve(pSvg, panel, points);
  AddKey(pSvg, panel, "as it is in the picture");
}

void AddToneCurve(cSvgDrawing& pSvg, const TmEngine::cTmRenderer& pRenderer) {
  constexpr int kPoints = 256;
  tPoints points;
  for (int i = 0; i <= kPoints; ++i) {
    const int index = i * (TmEngine::kTableSize - 1) / kPoints;
    points.emplace_back(100.0 * i / kPoints, 100.0 * static_cast<double>(pRenderer.GetToneCurve()[index]));
  }
  const sPanel panel = sPanel::At(1, 1, {0.0, 100.0}, {0.0, 100.0});
  AddAxes(pSvg, panel, {"Tone curve", "Light between black and white point (%)", "Light of the result (%)"});
  AddDiagonal(pSvg, panel);
  AddResultCurve(pSvg, panel, points);
  AddKey(pSvg, panel, "without contrast");
  const auto& clip = pRenderer.GetBlackWhite();
  pSvg.AddText(panel.fX.fEnd - 8.0, panel.fY.fStart - 12.0, "class=\"note left\"",
               fmt::format("black point {:.3g}, white point {:.3g} (base × detail)",
                           static_cast<double>(clip.fBlack), static_cast<double>(clip.fWhite)));
}

}  // namespace

std::string DrawToneFigure(const std::string& pName, const std::string& pSettings,
                           const Photo::sPictureStatistics& pStatistics,
                           const TmEngine::cTmRenderer& pRenderer) {
  cSvgDrawing svg(kWidth, kHeight, "Tone mapping of " + pName);
  svg.AddText(90.0, 42.0, "class=\"title\"", pName);
  svg.AddText(90.0, 66.0, "class=\"note start\"",
              fmt::format("{:.2f} decades ({:.1f} stops) from the 1 % to the 99.9 % quantile of luminance",
                          pStatistics.GetDynamicRange(), pStatistics.GetDynamicRange() / std::log10(2.0)));
  svg.AddText(90.0, 84.0, "class=\"note start\"", pSettings);
  const sSpan light = SpanOfLight(pStatistics);
  AddHistogram(svg, pStatistics, light);
  const auto& layers = pRenderer.GetLayerStatistics();
  const sSpan base = {static_cast<double>(layers.fBaseMin), static_cast<double>(layers.fBaseMax)};
  const sSpan detail = {static_cast<double>(layers.fDetailMin), static_cast<double>(layers.fDetailMax)};
  AddLayer(svg, 1, 0, pRenderer.GetToneTables().fBase, base, light,
           {"Base layer: large contrasts", "log₁₀ of the surroundings' luminance (decades)",
            "log₁₀ of the result (decades)"});
  AddLayer(svg, 0, 1, pRenderer.GetToneTables().fDetail, detail, Widen(detail, 0.4),
           {"Detail layer: fine contrasts", "log₁₀ of luminance over that of the surroundings (decades)",
            "log₁₀ of the result (decades)"});
  AddToneCurve(svg, pRenderer);
  return svg.Finish();
}

}  // namespace Tool
