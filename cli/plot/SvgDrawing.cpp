#include "cli/plot/SvgDrawing.h"

#include <fstream>
#include <vips/vips8>

#include "photo/base/Failure.h"
#include "photo/encode/OutputFormat.h"
#include "photo/io/VipsLibrary.h"

namespace Tool {
namespace {

constexpr double kPixelsPerUnit = 2.0;  // of a PNG

constexpr char kStyle[] = R"(<style>
text { font-family: 'DejaVu Sans', 'Liberation Sans', Arial, sans-serif; fill: #333; font-size: 13px; }
.title { font-size: 20px; font-weight: bold; fill: #222; }
.heading { font-size: 15px; font-weight: bold; fill: #222; }
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

/// What a file's name may hold and markup may not.
std::string Escape(const std::string& pText) {
  gchar* const valid = g_utf8_make_valid(pText.c_str(), -1);
  gchar* const escaped = g_markup_escape_text(valid, -1);
  std::string text = escaped;
  g_free(escaped);
  g_free(valid);
  return text;
}

}  // namespace

ePlotFormat ChoosePlotFormat(const std::string& pFile) {
  const std::string extension = Photo::GetExtension(pFile);
  if (extension == ".svg") return ePlotFormat::kSvg;
  if (extension == ".png") return ePlotFormat::kPng;
  throw Photo::cFailure(Photo::eFailure::kUsage, pFile,
                        "unknown extension of a plot's name; use .svg or .png");
}

void WritePlot(const std::string& pSvg, ePlotFormat pFormat, Photo::cTempFile& pFile) {
  if (pFormat == ePlotFormat::kPng) {
    try {
      VipsBlob* const text = vips_blob_copy(pSvg.data(), pSvg.size());
      const vips::VImage image =
          vips::VImage::svgload_buffer(text, vips::VImage::option()->set("scale", kPixelsPerUnit));
      vips_area_unref(VIPS_AREA(text));
      image.flatten(vips::VImage::option()->set("background", 255.0)).pngsave(pFile.GetPath().c_str());
    } catch (const vips::VError&) {
      pFile.Refuse(Photo::TakeVipsError());
    }
  } else {
    std::ofstream stream(pFile.GetPath(), std::ios::binary);
    if (!(stream << pSvg).flush()) pFile.Refuse("no reason given");
  }
  pFile.Commit();
}

cSvgDrawing::cSvgDrawing(int pWidth, int pHeight, const std::string& pTitle) {
  Add("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{}\" height=\"{}\" viewBox=\"0 0 {} {}\">\n", pWidth,
      pHeight, pWidth, pHeight);
  fText += "<title>" + Escape(pTitle) + "</title>\n" + kStyle;
  Add("<rect width=\"{}\" height=\"{}\" fill=\"white\"/>\n", pWidth, pHeight);
}

void cSvgDrawing::AddText(double pX, double pY, const char* pAttributes, const std::string& pText) {
  Add("<text x=\"{:.1f}\" y=\"{:.1f}\" {}>", pX, pY, pAttributes);
  fText += Escape(pText) + "</text>\n";
}

void cSvgDrawing::AddTurnedText(double pX, double pY, const std::string& pText) {
  Add("<text transform=\"translate({:.1f} {:.1f}) rotate(-90)\" class=\"label\">", pX, pY);
  fText += Escape(pText) + "</text>\n";
}

void cSvgDrawing::AddLine(double pX1, double pY1, double pX2, double pY2, const char* pAttributes) {
  Add("<line x1=\"{:.1f}\" y1=\"{:.1f}\" x2=\"{:.1f}\" y2=\"{:.1f}\" {}/>\n", pX1, pY1, pX2, pY2,
      pAttributes);
}

std::string cSvgDrawing::Finish() {
  return fText + "</svg>\n";
}

}  // namespace Tool
