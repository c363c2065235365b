#include "cli/MetadataSummary.h"

#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <vips/vips8>

#include "cli/FileKind.h"
#include "cli/Printf.h"
#include "cli/VipsLibrary.h"

namespace Cli {
namespace {

using vips::VImage;

/// What libvips says of an EXIF field: "raw (reading, type, ...)".
std::string GetField(const VImage& pImage, const std::string& pName) {
  const std::string field = "exif-" + pName;
  return pImage.get_typeof(field.c_str()) == 0 ? "" : pImage.get_string(field.c_str());
}

/// The field as people read it: the first part of what is in the brackets.
std::string GetText(const VImage& pImage, const std::string& pName) {
  std::string field = GetField(pImage, pName);
  const std::size_t end = field.rfind(" (");
  if (end == std::string::npos) return field;
  std::string text = field.substr(0, end);
  while (!text.empty() && text.back() == ' ') text.pop_back();
  return text;
}

/// A number or a fraction; 0 for none.
double GetNumber(const VImage& pImage, const std::string& pName) {
  double over = 0.0;
  double under = 1.0;
  const int count = std::sscanf(GetField(pImage, pName).c_str(), "%lf/%lf", &over, &under);
  return count >= 1 && under != 0.0 ? over / under : 0.0;
}

void Append(std::string& pTo, const std::string& pText, const char* pBetween) {
  if (!pText.empty()) pTo += (pTo.empty() ? "" : pBetween) + pText;
}

std::string DescribeTime(double pSeconds) {
  if (pSeconds <= 0.0) return "";
  return pSeconds < 0.4 ? Printf("1/%.0f s", 1.0 / pSeconds) : Printf("%g s", pSeconds);
}

std::string DescribeExposure(const VImage& pImage) {
  std::string text = DescribeTime(GetNumber(pImage, "ifd2-ExposureTime"));
  if (const double stop = GetNumber(pImage, "ifd2-FNumber"); stop > 0.0)
    Append(text, Printf("f/%.3g", stop), ", ");
  if (const double speed = GetNumber(pImage, "ifd2-ISOSpeedRatings"); speed > 0.0) {
    Append(text, Printf("ISO %.0f", speed), ", ");
  }
  if (const double length = GetNumber(pImage, "ifd2-FocalLength"); length > 0.0) {
    Append(text, Printf("%.3g mm", length), ", ");
  }
  return text;
}

/// The first of these that is set.
std::string GetFirst(const VImage& pImage, std::initializer_list<const char*> pNames) {
  for (const char* name : pNames) {
    if (std::string text = GetText(pImage, name); !text.empty()) return text;
  }
  return "";
}

}  // namespace

sMetadataSummary SummariseMetadata(const std::string& pFile) {
  sMetadataSummary summary;
  if (TellFileKind(pFile) != eFileKind::kVips) return summary;
  try {
    // from a source: libvips takes a "[" in a name for the start of options
    const VImage image = VImage::new_from_source(vips::VSource::new_from_file(pFile.c_str()), "");
    const std::string model = GetText(image, "ifd0-Model");
    summary.fCamera = GetText(image, "ifd0-Make");
    if (model.starts_with(summary.fCamera)) summary.fCamera.clear();
    Append(summary.fCamera, model, " ");
    summary.fLens = GetText(image, "ifd2-LensModel");
    summary.fExposure = DescribeExposure(image);
    summary.fDate = GetFirst(image, {"ifd2-DateTimeOriginal", "ifd2-DateTimeDigitized", "ifd0-DateTime"});
    summary.fHasGps = !GetFirst(image, {"ifd3-GPSLatitude", "ifd3-GPSLongitude"}).empty();
  } catch (const vips::VError&) {
    TakeVipsError();
  }
  return summary;
}

}  // namespace Cli
