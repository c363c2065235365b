#include "cli/plot/CurvePlot.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "cli/plot/SvgDrawing.h"
#include "engine/color/cColorSpace.h"
#include "engine/color/cTransfer.h"

namespace Tool {
namespace {

using TmEngine::cVector2;

// The drawing's measures, in its own units.
constexpr int kWidth = 1000;
constexpr int kHeight = 600;
constexpr double kLeft = 80.0;
constexpr double kRight = 850.0;
constexpr double kTop = 100.0;
constexpr double kBottom = 490.0;
constexpr double kBarTop = kBottom + 6.0;
constexpr double kBarHeight = 20.0;

constexpr sAxis kHues = {0.0, 360.0, kLeft, kRight};
constexpr sAxis kValues = {0.0, 1.0, kBottom, kTop};

enum class eMarker { kCircle, kSquare, kDiamond };

/// How a curve looks and what its ends mean. Curves that lie on one another are distinguished by their
/// dashes.
struct sLook {
  const char* fName;
  const char* fMeaning;
  const char* fColor;
  const char* fDashes;
  eMarker fMarker;
};
constexpr sLook kLooks[] = {
    {"Hue shift", "0: half a circle back, 1: half a circle on", "#6d3fc0", "none", eMarker::kCircle},
    {"Saturation", "0: grey, 1: doubled", "#d4380d", "12 5", eMarker::kSquare},
    {"Lightness", "0: darkest, 1: lightest", "#00798c", "3 4", eMarker::kDiamond}};

const char* NameOf(TmEngine::eSplineInterpolationMode pMode) {
  switch (pMode) {
    case TmEngine::eSplineInterpolationMode_Linear:
      return "straight lines between the points";
    case TmEngine::eSplineInterpolationMode_Flat:
      return "flat tangents at the points";
    default:
      return "smooth between the points";
  }
}

/// The hexcone's channel for a hue that lies pAway degrees from the channel's own: 1 near it, 0 far from it.
float HexconeChannel(double pAway) {
  const double distance = std::fabs(std::remainder(pAway, 360.0));
  return static_cast<float>(std::clamp(2.0 - distance / 60.0, 0.0, 1.0));
}

/// A clear colour of the hue, as the engine counts it - in linear ProPhoto RGB -, as sRGB shows it.
void AddColor(cSvgDrawing& pSvg, double pDegrees) {
  const TmEngine::cColorSpace_sRGB screen;
  constexpr float kLeast = 0.06f;  // of the largest channel: purer colours are the same on a screen
  TmEngine::cVector3 working;
  for (int i = 0; i < 3; ++i) working[i] = kLeast + (1.0f - kLeast) * HexconeChannel(pDegrees - 120.0 * i);
  const TmEngine::cVector3 linear =
      screen.GetXYZToRGB() * (TmEngine::cColorSpace_ProPhotoRGB().GetRGBToXYZ() * working);
  const float largest = std::max({linear[0], linear[1], linear[2], 1e-3f});
  int samples[3];
  for (int i = 0; i < 3; ++i) {
    const float value = screen.GetFromLinear()->Evaluate(std::max(linear[i] / largest, 0.0f));
    samples[i] = static_cast<int>(std::lround(std::clamp(value, 0.0f, 1.0f) * 255.0f));
  }
  pSvg.Add("#{:02x}{:02x}{:02x}", static_cast<unsigned>(samples[0]), static_cast<unsigned>(samples[1]),
           static_cast<unsigned>(samples[2]));
}

void AddHueBar(cSvgDrawing& pSvg) {
  constexpr int kStep = 5;
  pSvg.Add("<defs><linearGradient id=\"hues\">\n");
  for (int degrees = 0; degrees <= 360; degrees += kStep) {
    pSvg.Add("<stop offset=\"{:.4f}\" stop-color=\"", degrees / 360.0);
    AddColor(pSvg, degrees);
    pSvg.Add("\"/>\n");
  }
  pSvg.Add(
      "</linearGradient></defs>\n<rect x=\"{:.1f}\" y=\"{:.1f}\" width=\"{:.1f}\" height=\"{:.1f}\" "
      "rx=\"3\" ",
      kLeft, kBarTop, kRight - kLeft, kBarHeight);
  pSvg.Add("fill=\"url(#hues)\"/>\n");
}

void AddHueAxis(cSvgDrawing& pSvg) {
  for (int degrees = 0; degrees <= 360; degrees += 30) {
    const bool isNamed = degrees % 60 == 0;
    pSvg.AddLine(kHues.At(degrees), kTop, kHues.At(degrees), kBottom,
                 isNamed ? "class=\"grid\"" : "class=\"faint\"");
    if (isNamed) {
      pSvg.AddText(kHues.At(degrees), kBarTop + kBarHeight + 20.0, "class=\"tick\"",
                   std::to_string(degrees) + "°");
    }
  }
  pSvg.AddText((kLeft + kRight) / 2.0, kBarTop + kBarHeight + 48.0, "class=\"label\"", "Hue (degrees)");
}

/// Left the values as they are given, right what they do.
void AddValueAxes(cSvgDrawing& pSvg) {
  for (int quarter = 0; quarter <= 4; ++quarter) {
    const double y = kValues.At(quarter / 4.0);
    pSvg.AddLine(kLeft, y, kRight, y, quarter == 2 ? "class=\"neutral\"" : "class=\"grid\"");
    pSvg.AddText(kLeft - 10.0, y + 4.5, "class=\"tick left\"", fmt::format("{:g}", quarter / 4.0));
    pSvg.AddText(kRight + 52.0, y + 4.5, "class=\"tick left\"",
                 fmt::format("{}{}°",
                             quarter < 2   ? "−"
                             : quarter > 2 ? "+"
                                           : "",
                             std::abs(quarter * 90 - 180)));
    pSvg.AddText(kRight + 112.0, y + 4.5, "class=\"tick left\"", std::to_string(quarter * 50) + " %");
  }
  pSvg.AddTurnedText(kLeft - 52.0, (kTop + kBottom) / 2.0, "Value (0.5 is neutral)");
  pSvg.AddText(kRight + 34.0, kBottom + 22.0, "class=\"note\"", "shift");
  pSvg.AddText(kRight + 94.0, kBottom + 22.0, "class=\"note\"", "satur.,");
  pSvg.AddText(kRight + 94.0, kBottom + 37.0, "class=\"note\"", "lightn.");
}

/// pFilled: a point that was given; hollow ones close the circle.
void AddMarker(cSvgDrawing& pSvg, const sLook& pLook, double pX, double pY, bool pFilled) {
  const char* const fill = pFilled ? pLook.fColor : "white";
  if (pLook.fMarker == eMarker::kCircle) {
    pSvg.Add("<circle cx=\"{:.2f}\" cy=\"{:.2f}\" r=\"5\"", pX, pY);
  } else {
    const bool isDiamond = pLook.fMarker == eMarker::kDiamond;
    pSvg.Add("<rect x=\"-4.5\" y=\"-4.5\" width=\"9\" height=\"9\" transform=\"translate({:.2f} {:.2f}){}\"",
             pX, pY, isDiamond ? " rotate(45)" : "");
  }
  pSvg.Add(" fill=\"{}\" stroke=\"{}\" stroke-width=\"1.6\"/>\n", fill, pLook.fColor);
}

void AddCurve(cSvgDrawing& pSvg, const sLook& pLook, const Photo::tHuePoints& pPoints,
              TmEngine::eSplineInterpolationMode pMode) {
  constexpr int kSteps = 720;
  const auto curve = Photo::MakeHueCurve(pPoints, pMode);
  pSvg.Add("<polyline class=\"curve\" stroke=\"{}\" stroke-dasharray=\"{}\" points=\"", pLook.fColor,
           pLook.fDashes);
  for (int i = 0; i <= kSteps; ++i) {
    const float x = static_cast<float>(i) / kSteps;
    pSvg.Add("{:.2f},{:.2f} ", kHues.At(360.0 * i / kSteps),
             kValues.At(static_cast<double>(curve->Evaluate(x))));
  }
  pSvg.Add("\"/>\n");
  if (pPoints.empty()) return;
  for (const cVector2& point : Photo::CloseCircle(pPoints)) {
    const bool isGiven = std::any_of(pPoints.begin(), pPoints.end(),
                                     [&](const cVector2& pGiven) { return pGiven.fX == point.fX; });
    AddMarker(pSvg, pLook, kHues.At(static_cast<double>(point.fX)), kValues.At(static_cast<double>(point.fY)),
              isGiven);
  }
}

void AddLegendEntry(cSvgDrawing& pSvg, const sLook& pLook, double pX, bool pIsNeutral) {
  constexpr double kY = 64.0;
  pSvg.Add("<line x1=\"{:.1f}\" y1=\"{:.1f}\" x2=\"{:.1f}\" y2=\"{:.1f}\" class=\"curve\" stroke=\"{}\" ", pX,
           kY, pX + 46.0, kY, pLook.fColor);
  pSvg.Add("stroke-dasharray=\"{}\"/>\n", pLook.fDashes);
  AddMarker(pSvg, pLook, pX + 23.0, kY, true);
  pSvg.AddText(pX + 56.0, kY - 2.0, "class=\"name\"",
               pLook.fName + std::string(pIsNeutral ? " (neutral)" : ""));
  pSvg.AddText(pX + 56.0, kY + 14.0, "class=\"note start\"", pLook.fMeaning);
}

}  // namespace

std::string DrawHueCurves(const Photo::sHueCurveOptions& pCurves) {
  cSvgDrawing svg(kWidth, kHeight, "Colour curves over hue");
  svg.AddText(kLeft, 34.0, "class=\"title\"", "Colour curves over hue");
  svg.AddText(kRight, 34.0, "class=\"note left\"", NameOf(pCurves.fMode));
  AddHueAxis(svg);
  AddValueAxes(svg);
  AddHueBar(svg);
  const Photo::tHuePoints* const points[] = {&pCurves.fHueShift, &pCurves.fSaturation, &pCurves.fLightness};
  constexpr double kLegendX[] = {kLeft, kLeft + 335.0, kLeft + 575.0};
  for (int i = 0; i < 3; ++i) {
    AddCurve(svg, kLooks[i], *points[i], pCurves.fMode);
    AddLegendEntry(svg, kLooks[i], kLegendX[i], points[i]->empty());
  }
  return svg.Finish();
}

}  // namespace Tool
