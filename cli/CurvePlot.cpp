#include "cli/CurvePlot.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <vips/vips8>

#include "cli/Failure.h"
#include "cli/PictureWriter.h"
#include "engine/cColorSpace.h"
#include "engine/cTransfer.h"

namespace Cli {
namespace {

using TmEngine::cVector2;

// The drawing's measures, in its own units; a PNG has two pixels a unit.
constexpr int kWidth = 1000;
constexpr int kHeight = 600;
constexpr double kLeft = 80.0;
constexpr double kRight = 850.0;
constexpr double kTop = 100.0;
constexpr double kBottom = 490.0;
constexpr double kBarTop = kBottom + 6.0;
constexpr double kBarHeight = 20.0;
constexpr double kPixelsPerUnit = 2.0;

double XAt(double pDegrees) {
  return kLeft + (kRight - kLeft) * pDegrees / 360.0;
}

double YAt(double pValue) {
  return kBottom - (kBottom - kTop) * pValue;
}

/// Appends text in the manner of printf.
__attribute__((format(printf, 2, 3))) void Add(std::string& pSvg, const char* pFormat, ...) {
  char text[1024];
  va_list arguments;
  va_start(arguments, pFormat);
  std::vsnprintf(text, sizeof text, pFormat, arguments);
  va_end(arguments);
  pSvg += text;
}

enum class eMarker { kCircle, kSquare, kDiamond };

/// How a curve looks and what its ends mean. Curves that lie on one another are told apart by their dashes.
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
void AddColor(std::string& pSvg, double pDegrees) {
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
  Add(pSvg, "#%02x%02x%02x", static_cast<unsigned>(samples[0]), static_cast<unsigned>(samples[1]),
      static_cast<unsigned>(samples[2]));
}

void AddHueBar(std::string& pSvg) {
  constexpr int kStep = 5;
  pSvg += "<defs><linearGradient id=\"hues\">\n";
  for (int degrees = 0; degrees <= 360; degrees += kStep) {
    Add(pSvg, "<stop offset=\"%.4f\" stop-color=\"", degrees / 360.0);
    AddColor(pSvg, degrees);
    pSvg += "\"/>\n";
  }
  Add(pSvg, "</linearGradient></defs>\n<rect x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\" rx=\"3\" ",
      kLeft, kBarTop, kRight - kLeft, kBarHeight);
  pSvg += "fill=\"url(#hues)\"/>\n";
}

void AddText(std::string& pSvg, double pX, double pY, const char* pAttributes, const std::string& pText) {
  Add(pSvg, "<text x=\"%.1f\" y=\"%.1f\" %s>%s</text>\n", pX, pY, pAttributes, pText.c_str());
}

/// Upright text, turned so that it reads from below.
void AddTurnedText(std::string& pSvg, double pX, double pY, const std::string& pText) {
  Add(pSvg, "<text transform=\"translate(%.1f %.1f) rotate(-90)\" class=\"label\">%s</text>\n", pX, pY,
      pText.c_str());
}

void AddLine(std::string& pSvg, double pX1, double pY1, double pX2, double pY2, const char* pAttributes) {
  Add(pSvg, "<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" %s/>\n", pX1, pY1, pX2, pY2, pAttributes);
}

void AddHueAxis(std::string& pSvg) {
  for (int degrees = 0; degrees <= 360; degrees += 30) {
    const bool isNamed = degrees % 60 == 0;
    AddLine(pSvg, XAt(degrees), kTop, XAt(degrees), kBottom, isNamed ? "class=\"grid\"" : "class=\"faint\"");
    if (isNamed) {
      AddText(pSvg, XAt(degrees), kBarTop + kBarHeight + 20.0, "class=\"tick\"",
              std::to_string(degrees) + "°");
    }
  }
  AddText(pSvg, (kLeft + kRight) / 2.0, kBarTop + kBarHeight + 48.0, "class=\"label\"", "Hue (degrees)");
}

/// Left the values as they are given, right what they do.
void AddValueAxes(std::string& pSvg) {
  for (int quarter = 0; quarter <= 4; ++quarter) {
    const double y = YAt(quarter / 4.0);
    AddLine(pSvg, kLeft, y, kRight, y, quarter == 2 ? "class=\"neutral\"" : "class=\"grid\"");
    std::string value;
    Add(value, "%g", quarter / 4.0);
    AddText(pSvg, kLeft - 10.0, y + 4.5, "class=\"tick left\"", value);
    std::string effect;
    Add(effect, "%s%d°", quarter < 2 ? "−" : quarter > 2 ? "+" : "", std::abs(quarter * 90 - 180));
    AddText(pSvg, kRight + 52.0, y + 4.5, "class=\"tick left\"", effect);
    AddText(pSvg, kRight + 112.0, y + 4.5, "class=\"tick left\"", std::to_string(quarter * 50) + " %");
  }
  AddTurnedText(pSvg, kLeft - 52.0, (kTop + kBottom) / 2.0, "Value (0.5 is neutral)");
  AddText(pSvg, kRight + 34.0, kBottom + 22.0, "class=\"note\"", "shift");
  AddText(pSvg, kRight + 94.0, kBottom + 22.0, "class=\"note\"", "satur.,");
  AddText(pSvg, kRight + 94.0, kBottom + 37.0, "class=\"note\"", "lightn.");
}

/// pFilled: a point that was given; hollow ones close the circle.
void AddMarker(std::string& pSvg, const sLook& pLook, double pX, double pY, bool pFilled) {
  const char* const fill = pFilled ? pLook.fColor : "white";
  if (pLook.fMarker == eMarker::kCircle) {
    Add(pSvg, "<circle cx=\"%.2f\" cy=\"%.2f\" r=\"5\"", pX, pY);
  } else {
    const bool isDiamond = pLook.fMarker == eMarker::kDiamond;
    Add(pSvg, "<rect x=\"-4.5\" y=\"-4.5\" width=\"9\" height=\"9\" transform=\"translate(%.2f %.2f)%s\"", pX,
        pY, isDiamond ? " rotate(45)" : "");
  }
  Add(pSvg, " fill=\"%s\" stroke=\"%s\" stroke-width=\"1.6\"/>\n", fill, pLook.fColor);
}

void AddCurve(std::string& pSvg, const sLook& pLook, const tHuePoints& pPoints,
              TmEngine::eSplineInterpolationMode pMode) {
  constexpr int kSteps = 720;
  const auto curve = MakeHueCurve(pPoints, pMode);
  Add(pSvg, "<polyline class=\"curve\" stroke=\"%s\" stroke-dasharray=\"%s\" points=\"", pLook.fColor,
      pLook.fDashes);
  for (int i = 0; i <= kSteps; ++i) {
    const float x = static_cast<float>(i) / kSteps;
    Add(pSvg, "%.2f,%.2f ", XAt(360.0 * i / kSteps), YAt(static_cast<double>(curve->Evaluate(x))));
  }
  pSvg += "\"/>\n";
  if (pPoints.empty()) return;
  for (const cVector2& point : CloseCircle(pPoints)) {
    const bool isGiven = std::any_of(pPoints.begin(), pPoints.end(),
                                     [&](const cVector2& pGiven) { return pGiven.fX == point.fX; });
    AddMarker(pSvg, pLook, XAt(static_cast<double>(point.fX)), YAt(static_cast<double>(point.fY)), isGiven);
  }
}

void AddLegendEntry(std::string& pSvg, const sLook& pLook, double pX, bool pIsNeutral) {
  constexpr double kY = 64.0;
  Add(pSvg, "<line x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\" class=\"curve\" stroke=\"%s\" ", pX, kY,
      pX + 46.0, kY, pLook.fColor);
  Add(pSvg, "stroke-dasharray=\"%s\"/>\n", pLook.fDashes);
  AddMarker(pSvg, pLook, pX + 23.0, kY, true);
  AddText(pSvg, pX + 56.0, kY - 2.0, "class=\"name\"",
          pLook.fName + std::string(pIsNeutral ? " (neutral)" : ""));
  AddText(pSvg, pX + 56.0, kY + 14.0, "class=\"note start\"", pLook.fMeaning);
}

constexpr char kStyle[] = R"(<style>
text { font-family: 'DejaVu Sans', 'Liberation Sans', Arial, sans-serif; fill: #333; font-size: 13px; }
.title { font-size: 20px; font-weight: bold; fill: #222; }
.tick, .label { text-anchor: middle; }
.label, .name { font-size: 14px; fill: #222; }
.note { font-size: 11.5px; fill: #666; text-anchor: middle; }
.start { text-anchor: start; }
.left { text-anchor: end; }
.grid { stroke: #dcdcdc; }
.faint { stroke: #efefef; }
.neutral { stroke: #888; stroke-width: 1.2; }
.curve { fill: none; stroke-width: 2.6; stroke-linejoin: round; }
</style>
)";

}  // namespace

ePlotFormat ChoosePlotFormat(const std::string& pFile) {
  const std::string ending = GetEnding(pFile);
  if (ending == ".svg") return ePlotFormat::kSvg;
  if (ending == ".png") return ePlotFormat::kPng;
  throw cFailure(eExitCode_Usage, pFile, "unknown ending of a plot's name; use .svg or .png");
}

std::string DrawHueCurves(const sHueCurveOptions& pCurves) {
  std::string svg;
  Add(svg,
      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%d\" height=\"%d\" viewBox=\"0 0 %d %d\">\n"
      "<title>Colour curves over hue</title>\n",
      kWidth, kHeight, kWidth, kHeight);
  svg += kStyle;
  Add(svg, "<rect width=\"%d\" height=\"%d\" fill=\"white\"/>\n", kWidth, kHeight);
  AddText(svg, kLeft, 34.0, "class=\"title\"", "Colour curves over hue");
  AddText(svg, kRight, 34.0, "class=\"note left\"", NameOf(pCurves.fMode));
  AddHueAxis(svg);
  AddValueAxes(svg);
  AddHueBar(svg);
  const tHuePoints* const points[] = {&pCurves.fHueShift, &pCurves.fSaturation, &pCurves.fLightness};
  constexpr double kLegendX[] = {kLeft, kLeft + 335.0, kLeft + 575.0};
  for (int i = 0; i < 3; ++i) {
    AddCurve(svg, kLooks[i], *points[i], pCurves.fMode);
    AddLegendEntry(svg, kLooks[i], kLegendX[i], points[i]->empty());
  }
  return svg + "</svg>\n";
}

void WritePlot(const std::string& pSvg, ePlotFormat pFormat, cTempFile& pFile) {
  if (pFormat == ePlotFormat::kPng) {
    try {
      VipsBlob* const text = vips_blob_copy(pSvg.data(), pSvg.size());
      const vips::VImage image =
          vips::VImage::svgload_buffer(text, vips::VImage::option()->set("scale", kPixelsPerUnit));
      vips_area_unref(VIPS_AREA(text));
      image.flatten(vips::VImage::option()->set("background", 255.0)).pngsave(pFile.GetPath().c_str());
    } catch (const vips::VError&) {
      RefuseToWrite(pFile);
    }
  } else {
    errno = 0;
    std::ofstream stream(pFile.GetPath(), std::ios::binary);
    if (!(stream << pSvg).flush()) {
      throw cFailure(eExitCode_CannotWrite, pFile.GetTarget(),
                     "writing failed (" + std::string(std::strerror(errno)) + ")");
    }
  }
  pFile.Commit();
}

}  // namespace Cli
